#include "input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

#include "errors.h"

namespace kivconv {

Input::Input(const std::string& path)
    : m_name(path == "-" ? "standard input" : path), m_owned(path != "-")
{
    m_descriptor = m_owned ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
    if (m_descriptor < 0)
        throw FileError(m_name, errno);
    struct stat status;
    if (::fstat(m_descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        if (m_owned)
            ::close(m_descriptor);
        throw FileError(m_name, EISDIR);
    }
}

Input::~Input()
{
    if (m_owned)
        ::close(m_descriptor);
}

std::size_t Input::read(unsigned char* bytes, std::size_t n)
{
    for (;;) {
        const ssize_t got = ::read(m_descriptor, bytes, n);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno != EINTR)
            throw FileError(m_name, errno);
    }
}

void Input::refuse_to_feed(int descriptor) const
{
    struct stat in;
    struct stat out;
    if (::fstat(m_descriptor, &in) != 0 || ::fstat(descriptor, &out) != 0)
        return;
    if (!S_ISREG(in.st_mode) || in.st_dev != out.st_dev || in.st_ino != out.st_ino)
        return;
    const bool appends = (::fcntl(descriptor, F_GETFL) & O_APPEND) != 0;
    if (in.st_size > 0 && (appends || ::lseek(descriptor, 0, SEEK_CUR) < in.st_size))
        throw FileError(m_name +
                        ": is also the output (use --output to convert in place)");
}

std::optional<std::uint64_t> size_of_input(const std::string& path)
{
    struct stat status;
    const int failed =
        path == "-" ? ::fstat(STDIN_FILENO, &status) : ::stat(path.c_str(), &status);
    if (failed != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace kivconv
