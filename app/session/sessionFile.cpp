// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/sessionFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <strandview/formats/text/wording.h>

#include "output/OutputFile.h"
#include "session/sessionText.h"

namespace strandview {

namespace {

namespace fs = std::filesystem;

// Far more than all that anybody chooses.
const std::uintmax_t LONGEST_SESSION = 64 << 20;

// Or as it is, where the folder that the program runs in is gone.
fs::path absoluteOf(const std::string& name)
{
    std::error_code error;
    const fs::path path = fs::absolute(name, error);
    return error ? fs::path(name) : path;
}

fs::path folderOf(const std::string& name) { return absoluteOf(name).parent_path(); }

/// Calls `change` with every name of a file in a session.
template <typename Change>
void changeNames(Session& session, Change change)
{
    for (SessionFile& file : session.files)
        file.name = change(file.name);
    if (session.style.compare && *session.style.compare != "first")
        session.style.compare = change(*session.style.compare);
    for (std::string& beside : session.beside.what) {
        if (isFile(beside))
            beside = change(beside);
    }
}

// The shortest that leads there from where the program runs.
std::string fromHere(const fs::path& path)
{
    std::error_code error; // then there is none that is shorter
    const fs::path relative = path.lexically_relative(fs::current_path(error));
    const bool isBelow = !relative.empty() && *relative.begin() != "..";
    return (isBelow ? relative : path).string();
}

} // namespace

const char* const SESSION_ENDING = ".strandview";

bool isSessionName(const std::string& name) { return fs::path(name).extension() == SESSION_ENDING; }

std::string saveSession(Session session, const GoOn& goOn)
{
    const std::string name = session.name;
    if (!isSessionName(name))
        return "found the name " + inQuotes(name) + ", expected one that ends in " + SESSION_ENDING;
    for (SessionFile& file : session.files) {
        std::string fault;
        const auto known = fingerprintOf(file.name, goOn, fault);
        if (!known)
            return fault.empty() ? "it was stopped" : fault;
        file = *known;
    }
    const fs::path folder = folderOf(name);
    changeNames(session, [&folder](const std::string& file) {
        const fs::path path = absoluteOf(file).lexically_normal();
        const fs::path relative = path.lexically_relative(folder.lexically_normal());
        return (relative.empty() ? path : relative).generic_string();
    });
    return writeFile(name, textOf(session));
}

std::optional<Session> readSession(const std::string& name, std::string& fault)
{
    std::error_code error;
    if (fs::file_size(name, error) > LONGEST_SESSION && !error) {
        fault = name + ": found more than 64 MiB, expected a session";
        return std::nullopt;
    }
    std::ifstream file(name, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad() || fs::is_directory(name, error)) {
        fault = name + ": " + std::strerror(fs::is_directory(name, error) ? EISDIR : errno);
        return std::nullopt;
    }
    std::optional<Session> session = parseSession(text, fault);
    if (!session) {
        fault = name + ": " + fault;
        return std::nullopt;
    }
    session->name = name;
    const fs::path folder = folderOf(name);
    changeNames(*session, [&folder](const std::string& there) {
        return fromHere((folder / there).lexically_normal());
    });
    return session;
}

} // namespace strandview
