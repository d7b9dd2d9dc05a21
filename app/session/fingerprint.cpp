// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/fingerprint.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace strandview {

namespace {

const int BYTES_AT_ONCE = 1 << 20;

std::optional<SessionFile> fingerprintOfFolder(const std::string& name)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    SessionFile file{name, 0, ""};
    const QDir folder(QString::fromStdString(name));
    for (const QFileInfo& one : folder.entryInfoList(QDir::Files, QDir::Name)) {
        const QByteArray length = QByteArray::number(one.size());
        hash.addData(one.fileName().toUtf8() + '/' + length + '\n');
        file.bytes += std::uint64_t(one.size());
    }
    file.digest = hash.result().toHex().toStdString();
    return file;
}

} // namespace

std::optional<SessionFile> fingerprintOf(const std::string& name, const GoOn& goOn,
                                         std::string& fault)
{
    const QString path = QString::fromStdString(name);
    if (QFileInfo(path).isDir())
        return fingerprintOfFolder(name);
    QFile content(path);
    if (!content.open(QIODevice::ReadOnly)) {
        fault = name + ": " + content.errorString().toStdString();
        return std::nullopt;
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    SessionFile file{name, 0, ""};
    QByteArray piece(BYTES_AT_ONCE, Qt::Uninitialized);
    for (qint64 read = 0; (read = content.read(piece.data(), piece.size())) != 0;) {
        if (read < 0) {
            fault = name + ": " + content.errorString().toStdString();
            return std::nullopt;
        }
        if (goOn && !goOn())
            return std::nullopt;
        hash.addData(piece.constData(), int(read));
        file.bytes += std::uint64_t(read);
    }
    file.digest = hash.result().toHex().toStdString();
    return file;
}

std::vector<std::string> findChanged(const std::vector<SessionFile>& files, const GoOn& goOn)
{
    std::vector<std::string> changed;
    for (const SessionFile& file : files) {
        const QFileInfo info(QString::fromStdString(file.name));
        if (file.digest.empty() || !info.exists())
            continue;
        // Its content need not be read where its length tells.
        bool isSame = info.isDir() || std::uint64_t(info.size()) == file.bytes;
        if (isSame) {
            std::string fault;
            const auto now = fingerprintOf(file.name, goOn, fault);
            if (!now && fault.empty())
                break;
            isSame = now && now->digest == file.digest;
        }
        if (!isSame)
            changed.push_back(file.name + ": has changed since the session was saved");
    }
    return changed;
}

} // namespace strandview
