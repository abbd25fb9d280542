#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "errors.h"

namespace kivconv {
namespace {

// The file that a chain of symbolic links leads to: moving another file onto
// the link would replace the link.
std::string resolve_links(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr),
                                                      std::free);
    if (!real)
        throw FileError(path, errno);
    return real.get();
}

bool is_link(const std::string& path)
{
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

}  // namespace

Output::Output(const std::string& path) : m_name(path)
{
    if (path == "-") {
        m_name = "standard output";
        m_descriptor = STDOUT_FILENO;
    } else {
        open_file(path);
    }
}

void Output::open_file(const std::string& path)
{
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) {
        if (errno != ENOENT)
            throw FileError(path, errno);
        if (is_link(path))
            throw FileError(path + ": is a symbolic link to nothing");
        m_temporary.emplace(path);
        m_temporary->set_default_mode();
    } else if (S_ISDIR(status.st_mode)) {
        throw FileError(path, EISDIR);
    } else if (::access(path.c_str(), W_OK) != 0) {
        throw FileError(path, errno);
    } else if (S_ISREG(status.st_mode)) {
        m_temporary.emplace(resolve_links(path));
        m_temporary->set_mode_of(status);
    } else {
        m_descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_descriptor < 0)
            throw FileError(path, errno);
        m_owned = true;
    }
    if (m_temporary)
        m_descriptor = m_temporary->descriptor();
}

Output::~Output()
{
    if (m_owned)
        ::close(m_descriptor);
}

void Output::write(const void* bytes, std::size_t n)
{
    const char* p = static_cast<const char*>(bytes);
    while (n > 0) {
        const ssize_t put = ::write(m_descriptor, p, n);
        if (put >= 0) {
            p += put;
            n -= static_cast<std::size_t>(put);
        } else if (errno != EINTR) {
            throw FileError(m_name + ": cannot write", errno);
        }
    }
}

void Output::commit()
{
    if (m_temporary)
        m_temporary->move_into_place();
}

}  // namespace kivconv
