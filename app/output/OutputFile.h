// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_OUTPUT_OUTPUTFILE_H
#define STRANDVIEW_APP_OUTPUT_OUTPUTFILE_H

#include <memory>
#include <string>
#include <string_view>

class QFileDevice;

namespace strandview {

/// A file that appears complete or not at all. Where the file system can, it has no name before it
/// is finished, so that nothing is left even of a program that was killed, but in the instant in
/// which it replaces another; elsewhere, and behind a link, it is written beside what it
/// replaces. Standard output for "-", which shows what is
/// written as it comes.
class OutputFile
{
public:
    explicit OutputFile(const std::string& fileName);
    /// Leaves nothing behind of what was not finished.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Only files are replaced. Returns one line that says what failed, or nothing.
    std::string open();
    /// Of an open file; whether all of it was taken so far.
    bool write(std::string_view bytes);
    /// One line if this or any writing before failed, or nothing.
    std::string finish();

private:
    std::string failure() const;
    bool openUnnamed();
    std::string giveName();

    std::string name; ///< for messages
    std::unique_ptr<QFileDevice> device;
    bool isTaken = true;
    bool isUnnamed = false; ///< until it is finished
};

/// Writes all of a file, as OutputFile does. One line that says what failed, or nothing.
std::string writeFile(const std::string& name, std::string_view bytes);

/// Empty if a file of this name can be written where it is; otherwise one line that says
/// why not.
std::string checkWritable(const std::string& name);

} // namespace strandview

#endif
