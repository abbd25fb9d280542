// input.h - one input file, read in large blocks.

#ifndef KIVCONV_INPUT_H
#define KIVCONV_INPUT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace kivconv {

class Input {
public:
    // Opens the file, "-" for standard input. Throws FileError, also for a
    // directory.
    explicit Input(const std::string& path);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // The path, or "standard input".
    const std::string& name() const noexcept { return m_name; }

    // Reads up to n bytes; 0 at the end of the file. Throws FileError.
    std::size_t read(unsigned char* bytes, std::size_t n);

    // Throws FileError if the descriptor writes to this very file in a way that
    // makes it grow while it is read, as in kivconv a >> a.
    void refuse_to_feed(int descriptor) const;

private:
    std::string m_name;
    int m_descriptor;
    bool m_owned;
};

// The bytes in the file, if that can be told before it is read.
std::optional<std::uint64_t> size_of_input(const std::string& path);

}  // namespace kivconv

#endif
