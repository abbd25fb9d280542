// The plain loops of the multi-byte charsets: what the wide kernels must agree
// with. They work on local pointers, and leave to the coders' careful steps what
// is not a whole sequence with room for any result.

#include <cstring>

#include "charset/gb18030_keys.h"
#include "charset/table_kernels.h"
#include "charset/tables/no_entry.h"

namespace kiv::portable {

using namespace gb18030;
using namespace tables;

namespace {

// --- ASCII ------------------------------------------------------------------------

// Whether so many of the next units are ASCII that the kernel for it pays; a space
// between words does not.
bool ascii_ahead(const unsigned char* p, std::ptrdiff_t left) noexcept
{
    std::uint64_t word;
    if (left < 8)
        return false;
    std::memcpy(&word, p, sizeof word);
    return (word & 0x8080808080808080) == 0;
}

bool ascii_ahead(const char16* p, std::ptrdiff_t left) noexcept
{
    std::uint64_t words[2];  // eight units
    if (left < 8)
        return false;
    std::memcpy(words, p, sizeof words);
    return ((words[0] | words[1]) & 0xFF80FF80FF80FF80) == 0;
}

// The turn of both loops at a unit of ASCII.
template <class Kernel, class In, class Out>
void convert_ascii(Kernel kernel, const In*& in, const In* in_end, Out*& out,
                   Out* out_end) noexcept
{
    if (ascii_ahead(in, in_end - in)) {
        const auto progress = kernel(in, in_end, out, out_end);
        in = progress.in;
        out = progress.out;
    } else {
        *out++ = static_cast<Out>(static_cast<char16_t>(*in++));
    }
}

}  // namespace

// --- One and two bytes --------------------------------------------------------------

template <class Traits>
DecodeProgress decode_multi_byte(const std::uint16_t* index,
                                 const typename Traits::DecodeEntry* data,
                                 const unsigned char* in, const unsigned char* in_end,
                                 char16* out, char16* out_end)
{
    constexpr unsigned bits = Traits::DECODE_BLOCK_BITS;
    while (in_end - in >= 2 && out_end - out >= 2) {
        const unsigned lead = *in;
        if (lead < 0x80) {
            convert_ascii(kernels().decode_ascii, in, in_end, out, out_end);
            continue;
        }
        unsigned key = lead;
        std::ptrdiff_t size = 1;
        if (Traits::LEAD.contains(lead)) {
            if (!Traits::TRAIL.contains(in[1]))
                break;
            key = dbcs_key(lead, in[1]);
            size = 2;
        }
        const unsigned block = index[key >> bits];
        if (block == NO_BLOCK)
            break;
        const char32_t c = data[block | (key & ((1U << bits) - 1))];
        if (c == NO_CHARACTER)
            break;
        if (sizeof data[0] > sizeof(char16_t) && c > 0xFFFF) {
            *out++ = static_cast<char16_t>(0xD7C0 + (c >> 10));
            *out++ = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
        } else {
            *out++ = static_cast<char16_t>(c);
        }
        in += size;
    }
    return {in, out};
}

template <class Traits>
EncodeProgress encode_multi_byte(const std::uint16_t* index, const std::uint16_t* data,
                                 const char16* in, const char16* in_end,
                                 unsigned char* out, unsigned char* out_end)
{
    constexpr unsigned bits = Traits::ENCODE_BLOCK_BITS;
    while (in != in_end && out_end - out >= 2) {
        const unsigned unit = static_cast<char16_t>(*in);
        if (unit < 0x80) {
            convert_ascii(kernels().encode_ascii, in, in_end, out, out_end);
            continue;
        }
        if (unit > Traits::HIGHEST)
            break;
        const unsigned block = index[unit >> bits];
        if (block == NO_BLOCK)
            break;
        const unsigned bytes = data[block | (unit & ((1U << bits) - 1))];
        if (bytes == NO_CODE)
            break;
        if (bytes >= 0x100)
            *out++ = static_cast<unsigned char>(bytes >> 8);
        *out++ = static_cast<unsigned char>(bytes);
        ++in;
    }
    return {in, out};
}

// --- GB 18030, as far as it has two bytes ---------------------------------------------

template <>
DecodeProgress decode_multi_byte<GB18030Traits>(const std::uint16_t* index,
                                                const char16_t* data,
                                                const unsigned char* in,
                                                const unsigned char* in_end, char16* out,
                                                char16* out_end)
{
    while (in_end - in >= 2 && out != out_end) {
        const unsigned lead = *in;
        if (lead < 0x80) {
            convert_ascii(kernels().decode_ascii, in, in_end, out, out_end);
            continue;
        }
        if (!LEAD.contains(lead) || !TRAIL.contains(in[1]))
            break;
        *out++ = unit_of(index, data, two_byte_key(lead, in[1]));
        in += 2;
    }
    return {in, out};
}

template <>
EncodeProgress encode_multi_byte<GB18030Traits>(const std::uint16_t* index,
                                                const std::uint16_t* data,
                                                const char16* in, const char16* in_end,
                                                unsigned char* out,
                                                unsigned char* out_end)
{
    while (in != in_end && out_end - out >= 2) {
        const unsigned unit = static_cast<char16_t>(*in);
        if (unit < 0x80) {
            convert_ascii(kernels().encode_ascii, in, in_end, out, out_end);
            continue;
        }
        if ((unit & 0xF800) == 0xD800)
            break;
        const unsigned key = key_of(index, data, unit);
        if (key >= FIRST_FOUR_BYTE_KEY)
            break;
        store_two_bytes(out, key);
        out += 2;
        ++in;
    }
    return {in, out};
}

#define KIV_INSTANTIATE(Traits)                                                   \
    template DecodeProgress decode_multi_byte<Traits>(                            \
        const std::uint16_t*, const Traits::DecodeEntry*, const unsigned char*,   \
        const unsigned char*, char16*, char16*);                                  \
    template EncodeProgress encode_multi_byte<Traits>(                            \
        const std::uint16_t*, const std::uint16_t*, const char16*, const char16*, \
        unsigned char*, unsigned char*);

KIV_INSTANTIATE(Micsft_932_Traits)
KIV_INSTANTIATE(Shift_JIS_Traits)
KIV_INSTANTIATE(Micsft_936_Traits)
KIV_INSTANTIATE(GBK_Traits)
KIV_INSTANTIATE(Micsft_949_Traits)
KIV_INSTANTIATE(Micsft_950_Traits)
KIV_INSTANTIATE(Big5_Traits)
KIV_INSTANTIATE(Big5_HKSCS_Traits)

#undef KIV_INSTANTIATE

}  // namespace kiv::portable
