// peers.h - what every benchmark program needs of the peers.

#ifndef KIVXX_BENCH_PEERS_H
#define KIVXX_BENCH_PEERS_H

#include <iconv.h>
#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace kivbench {

// The benchmarks are named subject/peer/text/bytes; report.py divides the times of
// the peers by those of the subject's peer "kivxx".

class Iconv {
public:
    Iconv(const char* to, const char* from) : m_state(iconv_open(to, from))
    {
        if (m_state == reinterpret_cast<iconv_t>(-1))
            throw std::runtime_error("iconv does not know the encoding");
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv() { iconv_close(m_state); }

    // Converts all of the input; whether it could. The byte counts become what is left
    // of the input and of the room.
    bool convert_some(const void* in, std::size_t& in_bytes, void* out,
                      std::size_t& out_bytes)
    {
        // iconv's parameter is not const though it only reads.
        char* from = static_cast<char*>(const_cast<void*>(in));
        char* to = static_cast<char*>(out);
        return iconv(m_state, &from, &in_bytes, &to, &out_bytes) != std::size_t(-1);
    }

    bool convert(const void* in, std::size_t in_bytes, void* out, std::size_t out_bytes)
    {
        return convert_some(in, in_bytes, out, out_bytes);
    }

private:
    iconv_t m_state;
};

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

inline Converter open_converter(const char* name)
{
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error));
    if (U_FAILURE(error))
        throw std::runtime_error("ICU does not know the encoding");
    return converter;
}

// Return the size of the whole result, which is in `out` if that has room for it.
inline std::size_t decode(UConverter& converter, const std::string& bytes, char16_t* out,
                          std::size_t room)
{
    UErrorCode error = U_ZERO_ERROR;
    return static_cast<std::size_t>(
        ucnv_toUChars(&converter, out, static_cast<std::int32_t>(room), bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &error));
}

inline std::size_t encode(UConverter& converter, const std::u16string& units, char* out,
                          std::size_t room)
{
    UErrorCode error = U_ZERO_ERROR;
    return static_cast<std::size_t>(
        ucnv_fromUChars(&converter, out, static_cast<std::int32_t>(room), units.data(),
                        static_cast<std::int32_t>(units.size()), &error));
}

}  // namespace kivbench

#endif
