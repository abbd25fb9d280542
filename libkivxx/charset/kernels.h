// charset/kernels.h - the inner loops of the coders, over raw arrays.
//
// A kernel converts the longest run that it handles from the front of its
// input and reports how far it came: it stops at the first unit that is not of
// its kind, at a fault, at an unfinished sequence, or where the output has no
// room, and what it consumed and wrote always match. It may stop earlier than
// it must; the coder's careful step takes one sequence from there and calls
// again. Kernels never read or write outside the given ranges.
//
// There is one set of plain loops (kernels_portable.cpp), which is the
// reference, and sets for instructions that not every machine has, in files of
// their own. kernels() is the one place that chooses.

#ifndef KIV_CHARSET_KERNELS_H
#define KIV_CHARSET_KERNELS_H

#include <algorithm>
#include <cstddef>

#include <kiv/char16.h>

namespace kiv {

// Where a kernel stopped.
struct DecodeProgress {
    const unsigned char* in;
    char16* out;
};
struct EncodeProgress {
    const char16* in;
    unsigned char* out;
};

using DecodeKernel = DecodeProgress (*)(const unsigned char* in,
                                        const unsigned char* in_end, char16* out,
                                        char16* out_end);
using EncodeKernel = EncodeProgress (*)(const char16* in, const char16* in_end,
                                        unsigned char* out, unsigned char* out_end);

struct Kernels {
    DecodeKernel decode_ascii;    // bytes below 0x80
    DecodeKernel decode_latin1;   // every byte; stops at an end only
    DecodeKernel decode_utf8;     // well-formed UTF-8
    DecodeKernel decode_utf16be;  // units that are no surrogate and not U+FFFE
    DecodeKernel decode_utf16le;
    EncodeKernel encode_ascii;    // units below 0x80
    EncodeKernel encode_latin1;   // units below 0x100
    EncodeKernel encode_utf8;     // well-formed UTF-16
    EncodeKernel encode_utf16be;  // units that are no surrogate
    EncodeKernel encode_utf16le;
};

extern const Kernels portable_kernels;
#if defined(__SSE2__)
extern const Kernels sse2_kernels;
#endif

// The best set for this machine.
const Kernels& kernels() noexcept;

// For kernels that write a unit for each that they read: how many there can be.
template <class In, class Out>
std::size_t common_size(const In* in, const In* in_end, const Out* out,
                        const Out* out_end) noexcept
{
    return static_cast<std::size_t>(std::min<std::ptrdiff_t>(in_end - in, out_end - out));
}

}  // namespace kiv

#endif
