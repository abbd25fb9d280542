// The kernels for SSE2, which every x86-64 has. UTF-8 is in files of its own.

#if defined(__SSE2__)

    #include "charset/sse2.h"

namespace kiv {
namespace {

using namespace kiv::sse2;

// --- One byte, one unit ---------------------------------------------------------

constexpr std::size_t STEP = 64;  // bytes that one test covers

DecodeProgress decode_ascii(const unsigned char* in, const unsigned char* in_end,
                            char16* out, char16* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    for (; n - i >= STEP; i += STEP) {
        const __m128i v[4] = {load(in + i), load(in + i + 16), load(in + i + 32),
                              load(in + i + 48)};
        if (any_top_bit(_mm_or_si128(_mm_or_si128(v[0], v[1]), _mm_or_si128(v[2], v[3]))))
            break;
        for (std::size_t k = 0; k < STEP; k += VECTOR_BYTES)
            widen16(in + i + k, out + i + k);
    }
    while (n - i >= VECTOR_BYTES && !any_top_bit(load(in + i))) {
        widen16(in + i, out + i);
        i += VECTOR_BYTES;
    }
    return portable_kernels.decode_ascii(in + i, in_end, out + i, out_end);
}

DecodeProgress decode_latin1(const unsigned char* in, const unsigned char* in_end,
                             char16* out, char16* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    if (n < VECTOR_BYTES)
        return portable_kernels.decode_latin1(in, in_end, out, out_end);
    for (std::size_t i = 0; i + VECTOR_BYTES <= n; i += VECTOR_BYTES)
        widen16(in + i, out + i);
    // The last vector may overlap the one before it.
    widen16(in + n - VECTOR_BYTES, out + n - VECTOR_BYTES);
    return {in + n, out + n};
}

// 16 units to bytes if none has a bit of `excluded`.
template <unsigned excluded>
bool narrow_if(const char16* in, unsigned char* out) noexcept
{
    const __m128i a = load(in);
    const __m128i b = load(in + VECTOR_UNITS);
    if (!all_zero(_mm_and_si128(_mm_or_si128(a, b), splat16(excluded))))
        return false;
    store(out, _mm_packus_epi16(a, b));
    return true;
}

template <unsigned excluded>
EncodeProgress narrow(const char16* in, const char16* in_end, unsigned char* out,
                      unsigned char* out_end, EncodeKernel rest)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    while (n - i >= VECTOR_BYTES && narrow_if<excluded>(in + i, out + i))
        i += VECTOR_BYTES;
    return rest(in + i, in_end, out + i, out_end);
}

EncodeProgress encode_ascii(const char16* in, const char16* in_end, unsigned char* out,
                            unsigned char* out_end)
{
    return narrow<0xFF80>(in, in_end, out, out_end, portable_kernels.encode_ascii);
}

EncodeProgress encode_latin1(const char16* in, const char16* in_end, unsigned char* out,
                             unsigned char* out_end)
{
    return narrow<0xFF00>(in, in_end, out, out_end, portable_kernels.encode_latin1);
}

// --- UTF-16 -----------------------------------------------------------------------

template <bool swapped>
__m128i in_order(__m128i v) noexcept
{
    return swapped ? _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8)) : v;
}

__m128i surrogates(__m128i units) noexcept
{
    return _mm_cmpeq_epi16(_mm_and_si128(units, splat16(0xF800)), splat16(0xD800));
}

template <bool big_endian>
DecodeProgress decode_utf16(const unsigned char* in, const unsigned char* in_end,
                            char16* out, char16* out_end)
{
    while (in_end - in >= 32 && out_end - out >= 16) {
        const __m128i a = in_order<big_endian>(load(in));
        const __m128i b = in_order<big_endian>(load(in + VECTOR_BYTES));
        const __m128i swapped_mark = _mm_or_si128(_mm_cmpeq_epi16(a, splat16(0xFFFE)),
                                                  _mm_cmpeq_epi16(b, splat16(0xFFFE)));
        const __m128i surrogate = _mm_or_si128(surrogates(a), surrogates(b));
        if (any_top_bit(_mm_or_si128(surrogate, swapped_mark)))
            break;
        store(out, a);
        store(out + VECTOR_UNITS, b);
        in += 2 * VECTOR_BYTES;
        out += 2 * VECTOR_UNITS;
    }
    const DecodeKernel rest =
        big_endian ? portable_kernels.decode_utf16be : portable_kernels.decode_utf16le;
    return rest(in, in_end, out, out_end);
}

template <bool big_endian>
EncodeProgress encode_utf16(const char16* in, const char16* in_end, unsigned char* out,
                            unsigned char* out_end)
{
    while (in_end - in >= 16 && out_end - out >= 32) {
        const __m128i a = load(in);
        const __m128i b = load(in + VECTOR_UNITS);
        if (any_top_bit(_mm_or_si128(surrogates(a), surrogates(b))))
            break;
        store(out, in_order<big_endian>(a));
        store(out + VECTOR_BYTES, in_order<big_endian>(b));
        in += 2 * VECTOR_UNITS;
        out += 2 * VECTOR_BYTES;
    }
    const EncodeKernel rest =
        big_endian ? portable_kernels.encode_utf16be : portable_kernels.encode_utf16le;
    return rest(in, in_end, out, out_end);
}

}  // namespace

constinit const Kernels sse2_kernels = {
    .decode_ascii = decode_ascii,
    .decode_latin1 = decode_latin1,
    .decode_utf8 = decode_utf8,
    .decode_utf16be = decode_utf16<true>,
    .decode_utf16le = decode_utf16<false>,
    .encode_ascii = encode_ascii,
    .encode_latin1 = encode_latin1,
    .encode_utf8 = encode_utf8,
    .encode_utf16be = encode_utf16<true>,
    .encode_utf16le = encode_utf16<false>,
};

}  // namespace kiv

#endif
