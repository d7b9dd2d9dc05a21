// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/digest.h"

#include <string_view>

#include <QCryptographicHash>

#include <strandview/formats/writeJson.h>

namespace strandview {

namespace {

bool add(QCryptographicHash& hash, std::string_view text)
{
    hash.addData(text.data(), int(text.size()));
    return true;
}

} // namespace

std::string digestOf(const Configuration& configuration)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    writeJson(configuration, [&hash](std::string_view piece) { return add(hash, piece); });
    return hash.result().toHex().toStdString();
}

std::string digestOf(const std::string& text)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    add(hash, text);
    return hash.result().toHex().toStdString();
}

} // namespace strandview
