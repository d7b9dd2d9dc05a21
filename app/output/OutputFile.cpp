// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
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
    return openUnnamed() || device->open(MODE) ? "" : failure();
}

// On file systems that have such files. What is replaced gives its permissions, and has to allow
// it.
bool OutputFile::openUnnamed()
{
    namespace fs = std::filesystem;
    std::error_code unknown;
    const fs::file_status before = fs::symlink_status(name, unknown);
    const bool isNew = before.type() == fs::file_type::not_found;
    if (!isNew && (before.type() != fs::file_type::regular || ::access(name.c_str(), W_OK) != 0))
        return false;
    const fs::path folder = fs::path(name).parent_path();
    const mode_t forAll = 0666; // but what the user's mask takes away
    const int file =
        ::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, forAll);
    if (file < 0)
        return false;
    if (!isNew)
        ::fchmod(file, mode_t(before.permissions()));
    auto unnamed = std::make_unique<QFile>();
    isUnnamed = unnamed->open(file, MODE, QFileDevice::AutoCloseHandle);
    if (isUnnamed)
        device = std::move(unnamed);
    return isUnnamed;
}

// What is there is replaced.
std::string OutputFile::giveName()
{
    const std::string file = "/proc/self/fd/" + std::to_string(device->handle());
    const auto linkTo = [&file](const std::string& path) {
        return ::linkat(AT_FDCWD, file.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (::fsync(device->handle()) == 0 && linkTo(name))
        return "";
    const int mostNames = 100;
    for (int i = 0; errno == EEXIST && i < mostNames; ++i) {
        const std::string beside =
            name + "." + std::to_string(::getpid()) + "." + std::to_string(i);
        if (!linkTo(beside)) // a program that was killed just here may have left it
            continue;
        if (std::rename(beside.c_str(), name.c_str()) == 0)
            return "";
        const int reason = errno;
        ::unlink(beside.c_str());
        errno = reason;
        break;
    }
    return name + ": " + std::strerror(errno);
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
    if (isUnnamed && isTaken)
        return giveName();
    return isTaken && (!file || file->commit()) ? "" : failure();
}

std::string OutputFile::failure() const
{
    return name + ": " + device->errorString().toStdString();
}

std::string writeFile(const std::string& name, std::string_view bytes)
{
    OutputFile file(name);
    const std::string failure = file.open();
    if (!failure.empty())
        return failure;
    file.write(bytes);
    return file.finish();
}

std::string checkWritable(const std::string& name) { return OutputFile(name).open(); }

} // namespace strandview
