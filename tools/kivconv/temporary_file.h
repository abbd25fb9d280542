// temporary_file.h - a file that takes another's place when it is complete.

#ifndef KIVCONV_TEMPORARY_FILE_H
#define KIVCONV_TEMPORARY_FILE_H

#include <sys/stat.h>
#include <string>

namespace kivconv {

// Lies in the same folder as its target, so that moving it is one step of the
// file system. Removed by the destructor, and by signals that end the
// program, unless it was moved. There can be one at a time.
class TemporaryFile {
public:
    // Creates it. Throws FileError.
    explicit TemporaryFile(const std::string& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int descriptor() const noexcept { return m_descriptor; }

    // The permissions of a file created by the user, or of the file replaced.
    void set_default_mode();
    void set_mode_of(const struct stat& replaced);

    // Replaces the target. Throws FileError, leaving the target as it was.
    void move_into_place();

private:
    void close();

    std::string m_target;
    int m_descriptor = -1;
};

}  // namespace kivconv

#endif
