// What the fuzz targets share: the check that ends a run, the input taken apart, and
// text in arrays of its exact size.

#ifndef KIV_FUZZ_SUPPORT_H
#define KIV_FUZZ_SUPPORT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include <kiv/char16.h>

namespace kivfuzz {

// Ends the process, with the place of the check, unless `ok`.
inline void require(bool ok, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE())
{
    if (ok)
        return;
    std::fprintf(stderr, "%s:%d: a check failed\n", file, line);
    std::abort();
}

// Takes an input apart from its front; behind its end all is zero or empty.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : m_at(data), m_end(data + size) {}

    std::size_t left() const { return static_cast<std::size_t>(m_end - m_at); }
    unsigned byte() { return m_at != m_end ? *m_at++ : 0U; }
    // 0 to n - 1.
    unsigned below(unsigned n) { return (n > 256 ? number(2) : byte()) % n; }
    bool one_in(unsigned n) { return below(n) == n - 1; }

    // Of n bytes, at most 4 and 8, least significant first.
    unsigned number(unsigned n) { return static_cast<unsigned>(number64(n)); }
    std::uint64_t number64(unsigned n = 8)
    {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < n; ++i)
            value |= std::uint64_t{byte()} << 8 * i;
        return value;
    }

    std::string text(std::size_t n)
    {
        n = std::min(n, left());
        m_at += n;
        return std::string(m_at - n, m_at);
    }
    std::string rest() { return text(left()); }

private:
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
};

// Two bytes a unit, least significant first; half a unit is dropped.
inline kiv::ustring units_of(std::string_view bytes)
{
    kiv::ustring units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                       static_cast<unsigned char>(bytes[i + 1]) << 8);
    return units;
}

// An array of the text's exact size, so that a step beyond it is seen.
template <class CharT>
std::unique_ptr<CharT[]> exact_copy(const CharT* text, std::size_t n)
{
    auto copy = std::make_unique<CharT[]>(n);
    std::copy_n(text, n, copy.get());
    return copy;
}

template <class CharT>
std::unique_ptr<CharT[]> exact_copy(const std::basic_string<CharT>& text, bool terminator)
{
    return exact_copy(text.data(), text.size() + (terminator ? 1 : 0));
}

// A folder for the files of one process, removed at its end.
class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string path = std::filesystem::temp_directory_path() / "kivfuzz-XXXXXX";
        require(::mkdtemp(path.data()) != nullptr);
        m_path = path;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace kivfuzz

#endif
