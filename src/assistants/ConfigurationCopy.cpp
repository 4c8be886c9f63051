#include "assistants/ConfigurationCopy.h"

#include "config/AtomicFile.h"
#include "config/BoundedFile.h"
#include "config/FileWork.h"
#include "config/XmlReader.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

std::variant<std::string, NBPreferencesError> contentOf(const std::string &path)
{
    return readBoundedFile(path, XmlReader::maximumSize); // no larger one is ever opened
}

// In the folder of `to`, so that a rename puts it there.
std::optional<std::string> temporaryPathFor(const std::string &to)
{
    const std::optional<std::string> name = randomName();
    return name ? std::optional(pathIn(folderOfPath(to), "." + *name)) : std::nullopt;
}

std::optional<FileError> writeError(const std::string &path)
{
    return fileError("write", path, errno);
}

// A rename, and no write into it: a link is replaced, not followed.
std::optional<FileError> moveOver(const std::string &temporary, const std::string &to)
{
    if (std::rename(temporary.c_str(), to.c_str()) == 0) {
        (void)syncFolder(folderOfPath(to)); // the copy is read back in any case
        return std::nullopt;
    }
    std::optional<FileError> error = writeError(to);
    ::unlink(temporary.c_str());
    return error;
}

} // namespace

bool isSameFile(const std::string &path, const std::string &other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(path.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::optional<FileError> copyConfiguration(const std::string &path, const std::string &to)
{
    constexpr unsigned forOwner = 0600;
    const auto content = contentOf(path);
    if (const auto *error = std::get_if<NBPreferencesError>(&content))
        return FileError{error->code, error->message};
    const std::optional<std::string> temporary = temporaryPathFor(to);
    if (!temporary)
        return fileError("write", to, EIO);
    const auto &text = std::get<std::string>(content);
    if (std::optional<FileError> error = replaceFile(*temporary, text, forOwner))
        return error;
    if (std::optional<FileError> error = moveOver(*temporary, to))
        return error;
    const auto copy = contentOf(to);
    const auto *copied = std::get_if<std::string>(&copy);
    if (copied == nullptr || *copied != text)
        return fileError("read", to, EIO);
    return std::nullopt;
}

} // namespace nimbrel
