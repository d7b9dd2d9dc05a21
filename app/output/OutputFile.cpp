// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/OutputFile.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace strandview {

namespace {

// A buffer would not tell why it cannot be written out.
const QIODevice::OpenMode MODE = QIODevice::WriteOnly | QIODevice::Unbuffered;

} // namespace

OutputFile::OutputFile(const std::string& fileName)
    : name(fileName == "-" ? "standard output" : fileName)
{
    if (fileName == "-")
        device = std::make_unique<QFile>();
    else
        device = std::make_unique<QSaveFile>(QString::fromStdString(fileName));
}

OutputFile::~OutputFile() = default;

std::string OutputFile::open()
{
    if (auto* standardOutput = qobject_cast<QFile*>(device.get()))
        return standardOutput->open(STDOUT_FILENO, MODE) ? "" : failure();
    const QFileInfo target(device->fileName());
    if (target.exists() && !target.isFile())
        return name + ": found something that is no file, expected a file or nothing there";
    return device->open(MODE) ? "" : failure();
}

// A disk that becomes full takes a part, and tells why at the next.
bool OutputFile::write(std::string_view bytes)
{
    while (isTaken && !bytes.empty()) {
        const qint64 written = device->write(bytes.data(), qint64(bytes.size()));
        isTaken = written > 0;
        bytes.remove_prefix(isTaken ? std::size_t(written) : 0);
    }
    return isTaken;
}

std::string OutputFile::finish()
{
    auto* file = qobject_cast<QSaveFile*>(device.get());
    return isTaken && (!file || file->commit()) ? "" : failure();
}

std::string OutputFile::failure() const
{
    return name + ": " + device->errorString().toStdString();
}

std::string checkWritable(const std::string& name) { return OutputFile(name).open(); }

} // namespace strandview
