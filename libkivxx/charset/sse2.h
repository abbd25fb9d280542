// charset/sse2.h - short names for what the SSE2 kernels do all the time.
//
// Loads and stores need no alignment. To be included by *_sse2.cpp files only.

#ifndef KIV_CHARSET_SSE2_H
#define KIV_CHARSET_SSE2_H

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "charset/kernels.h"

namespace kiv::sse2 {

DecodeProgress decode_utf8(const unsigned char* in, const unsigned char* in_end,
                           char16* out, char16* out_end);
EncodeProgress encode_utf8(const char16* in, const char16* in_end, unsigned char* out,
                           unsigned char* out_end);

constexpr std::size_t VECTOR_BYTES = 16;
constexpr std::size_t VECTOR_UNITS = 8;

inline __m128i load(const void* p) noexcept
{
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}

inline void store(void* p, __m128i v) noexcept
{
    _mm_storeu_si128(static_cast<__m128i*>(p), v);
}

inline __m128i splat8(unsigned value) noexcept
{
    return _mm_set1_epi8(static_cast<char>(value));
}

inline __m128i splat16(unsigned value) noexcept
{
    return _mm_set1_epi16(static_cast<short>(value));
}

inline __m128i splat32(unsigned value) noexcept
{
    return _mm_set1_epi32(static_cast<int>(value));
}

// One bit per byte: its top bit.
inline std::uint32_t top_bits(__m128i v) noexcept
{
    return static_cast<std::uint32_t>(_mm_movemask_epi8(v));
}

inline bool any_top_bit(__m128i v) noexcept
{
    return top_bits(v) != 0;
}
inline bool all_zero(__m128i v) noexcept
{
    return top_bits(_mm_cmpeq_epi8(v, _mm_setzero_si128())) == 0xFFFF;
}

// Where four groups of 16 elements cover the first `size`, 16 to 64, of an array:
// the last ones overlap if there are fewer than 64.
struct Groups {
    explicit Groups(std::size_t size) noexcept
    {
        for (std::size_t i = 0; i < 4; ++i)
            at[i] = std::min(16 * i, size - 16);
    }
    // The bits of the groups at their places.
    std::uint64_t join(const std::uint32_t (&bits)[4]) const noexcept
    {
        return std::uint64_t{bits[0]} << at[0] | std::uint64_t{bits[1]} << at[1] |
               std::uint64_t{bits[2]} << at[2] | std::uint64_t{bits[3]} << at[3];
    }

    std::size_t at[4];
};

// Position of the lowest bit, `none` if there is none. Written so that it
// becomes a conditional move.
inline std::size_t lowest_bit(std::uint64_t bits, std::size_t none) noexcept
{
    return bits ? static_cast<std::size_t>(std::countr_zero(bits)) : none;
}

// 16 bytes to 16 units of the same values.
inline void widen16(const unsigned char* in, char16* out) noexcept
{
    const __m128i v = load(in);
    store(out, _mm_unpacklo_epi8(v, _mm_setzero_si128()));
    store(out + VECTOR_UNITS, _mm_unpackhi_epi8(v, _mm_setzero_si128()));
}

// 16 units below 0x100 to bytes; others come out as some byte.
inline void narrow16(const char16* in, unsigned char* out) noexcept
{
    store(out, _mm_packus_epi16(load(in), load(in + VECTOR_UNITS)));
}

// Copies n bytes. The copies of the kernels are short, and by whole vectors they
// are ready to be read soonest.
inline void copy_short(const void* from, std::size_t n, void* to) noexcept
{
    const auto* source = static_cast<const unsigned char*>(from);
    auto* target = static_cast<unsigned char*>(to);
    if (n < VECTOR_BYTES) {
        std::memcpy(target, source, n);
        return;
    }
    for (std::size_t i = 0; i + VECTOR_BYTES <= n; i += VECTOR_BYTES)
        store(target + i, load(source + i));
    const std::size_t last = n - VECTOR_BYTES;
    store(target + last, load(source + last));
}

// Copies n bytes and puts `zeros` zeros behind them; up to 15 bytes more are
// written.
inline void copy_padded(const void* from, std::size_t n, void* to,
                        std::size_t zeros) noexcept
{
    auto* const pad = static_cast<unsigned char*>(to) + n;
    for (std::size_t i = 0; i < zeros; i += VECTOR_BYTES)
        store(pad + i, _mm_setzero_si128());
    copy_short(from, n, to);
}

// The places where the runs of set and of clear bits meet, taken two at a time.
// The run before bit 0 counts as clear.
class RunEdges {
public:
    RunEdges(std::uint64_t bits, std::size_t size) noexcept
        : m_edges(bits ^ bits << 1), m_size(size)
    {
    }
    // Also where the runs of a second kind begin and end, without bit 0.
    RunEdges(std::uint64_t bits, std::uint64_t more, std::size_t size) noexcept
        : m_edges(((bits ^ bits << 1) | (more ^ more << 1)) & ~std::uint64_t{1}),
          m_size(size)
    {
    }

    std::size_t next() noexcept
    {
        const std::size_t at = lowest_bit(m_edges, m_size);
        m_edges &= m_edges - 1;
        return at;
    }

private:
    std::uint64_t m_edges;
    std::size_t m_size;
};

}  // namespace kiv::sse2

#endif
