#include "temporary_file.h"

#include <unistd.h>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "errors.h"

namespace kivconv {
namespace {

// What ends a program that does nothing wrong.
constexpr int ENDING_SIGNALS[] = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXFSZ};

// The path of the file to remove, empty if there is none. Read by the signal
// handler, changed only while the signals are blocked.
char s_path[PATH_MAX];

extern "C" void remove_temporary_file(int signal)
{
    if (s_path[0] != '\0')
        ::unlink(s_path);
    // The handler was installed for one use: now the signal ends the program.
    ::raise(signal);
}

void install_handlers()
{
    for (const int signal : ENDING_SIGNALS) {
        struct sigaction action;
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;  // as nohup arranges
        action = {};
        action.sa_handler = remove_temporary_file;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

class BlockSignals {
public:
    BlockSignals()
    {
        sigset_t set;
        ::sigemptyset(&set);
        for (const int signal : ENDING_SIGNALS)
            ::sigaddset(&set, signal);
        ::sigprocmask(SIG_BLOCK, &set, &m_before);
    }
    ~BlockSignals() { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    BlockSignals(const BlockSignals&) = delete;
    BlockSignals& operator=(const BlockSignals&) = delete;

private:
    sigset_t m_before;
};

}  // namespace

TemporaryFile::TemporaryFile(const std::string& target) : m_target(target)
{
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == target.npos ? "" : target.substr(0, slash + 1);
    const std::string pattern = folder + ".kivconv-XXXXXX";
    if (pattern.size() >= sizeof s_path)
        throw FileError(target, ENAMETOOLONG);

    const BlockSignals blocked;
    install_handlers();
    std::strcpy(s_path, pattern.c_str());
    m_descriptor = ::mkstemp(s_path);
    if (m_descriptor < 0) {
        const int error = errno;
        s_path[0] = '\0';
        throw FileError(target + ": cannot create a file beside it", error);
    }
}

TemporaryFile::~TemporaryFile()
{
    const BlockSignals blocked;
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (s_path[0] != '\0')
        ::unlink(s_path);
    s_path[0] = '\0';
}

void TemporaryFile::set_default_mode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(m_descriptor, 0666 & ~mask);
}

void TemporaryFile::set_mode_of(const struct stat& replaced)
{
    // Only the superuser may give a file away; others keep what they replace.
    const bool same_owner = ::fchown(m_descriptor, replaced.st_uid, replaced.st_gid) == 0;
    // Rights to act as its owner do not go to a file of another owner.
    const mode_t rights = same_owner ? 07777 : 0777;
    ::fchmod(m_descriptor, replaced.st_mode & rights);
}

void TemporaryFile::move_into_place()
{
    close();
    const BlockSignals blocked;
    if (std::rename(s_path, m_target.c_str()) != 0)
        throw FileError(m_target, errno);
    s_path[0] = '\0';
}

void TemporaryFile::close()
{
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    // Some file systems tell only now that they could not store it all.
    if (::close(descriptor) != 0 && errno != EINTR)
        throw FileError(m_target + ": cannot write", errno);
}

}  // namespace kivconv
