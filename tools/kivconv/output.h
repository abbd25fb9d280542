// output.h - where the converted bytes go.

#ifndef KIVCONV_OUTPUT_H
#define KIVCONV_OUTPUT_H

#include <cstddef>
#include <optional>
#include <string>

#include "temporary_file.h"

namespace kivconv {

// Standard output, a device or pipe, or a file. A file is written beside its
// place and moved there by commit(), so that it is the old one or the whole new
// one at any time.
class Output {
public:
    // "-" is standard output. Throws FileError if the path cannot be written.
    explicit Output(const std::string& path);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Writes all n bytes. Throws FileError.
    void write(const void* bytes, std::size_t n);

    // Puts a file in its place; without it the file stays as it was.
    void commit();

    int descriptor() const noexcept { return m_descriptor; }

private:
    void open_file(const std::string& path);

    std::string m_name;
    std::optional<TemporaryFile> m_temporary;
    int m_descriptor = -1;
    bool m_owned = false;  // close it; a temporary file closes its own
};

}  // namespace kivconv

#endif
