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

// What colours a datum and is not written for it.
void add(QCryptographicHash& hash, const std::vector<Scalar>& scalars)
{
    for (const Scalar& scalar : scalars) {
        add(hash, scalar.name);
        hash.addData(reinterpret_cast<const char*>(scalar.values.data()),
                     int(scalar.values.size() * sizeof(double)));
    }
}

} // namespace

std::string digestOf(const Configuration& configuration)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    writeJson(configuration, [&hash](std::string_view piece) { return add(hash, piece); });
    for (const Birod& birod : configuration.birods)
        add(hash, birod.scalars);
    for (const Dna& dna : configuration.dnas)
        add(hash, dna.scalars);
    return hash.result().toHex().toStdString();
}

std::string digestOf(const std::string& text)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    add(hash, text);
    return hash.result().toHex().toStdString();
}

} // namespace strandview
