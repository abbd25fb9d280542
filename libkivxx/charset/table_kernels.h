// charset/table_kernels.h - the inner loops that need a charset's tables.
//
// The contract is that of the kernels in kernels.h. The portable ones are the
// reference, plain loops (multi_byte_portable.cpp). Coders of single-byte charsets have
// plain loops of their own, to which a kernel that is null leaves all.

#ifndef KIV_CHARSET_TABLE_KERNELS_H
#define KIV_CHARSET_TABLE_KERNELS_H

#include <cstdint>
#include <tuple>

#include "charset/dbcs_traits.h"
#include "charset/kernels.h"

namespace kiv {

// table: the code unit of each byte. Stops at a byte without a character, in
// tables that have such bytes.
using SbcsDecodeKernel = DecodeProgress (*)(const char16_t* table,
                                            const unsigned char* in,
                                            const unsigned char* in_end, char16* out,
                                            char16* out_end);

// pages: see tables/sbcs_tables.h.
using SbcsEncodeKernel = EncodeProgress (*)(const unsigned char* pages, const char16* in,
                                            const char16* in_end, unsigned char* out,
                                            unsigned char* out_end);

// Stands for GB 18030 where a charset's traits are wanted.
struct GB18030Traits {
    using DecodeEntry = char16_t;
};

// index, data: the tables of the direction. They may stop at what is rare: what is not
// a single code unit or has four bytes.
namespace portable {
template <class Traits>
DecodeProgress decode_multi_byte(const std::uint16_t* index,
                                 const typename Traits::DecodeEntry* data,
                                 const unsigned char* in, const unsigned char* in_end,
                                 char16* out, char16* out_end);
template <class Traits>
EncodeProgress encode_multi_byte(const std::uint16_t* index, const std::uint16_t* data,
                                 const char16* in, const char16* in_end,
                                 unsigned char* out, unsigned char* out_end);

template <>
DecodeProgress decode_multi_byte<GB18030Traits>(const std::uint16_t* index,
                                                const char16_t* data,
                                                const unsigned char* in,
                                                const unsigned char* in_end, char16* out,
                                                char16* out_end);
template <>
EncodeProgress encode_multi_byte<GB18030Traits>(const std::uint16_t* index,
                                                const std::uint16_t* data,
                                                const char16* in, const char16* in_end,
                                                unsigned char* out,
                                                unsigned char* out_end);
}  // namespace portable

template <class Traits>
struct MultiByteKernels {
    decltype(&portable::decode_multi_byte<Traits>) decode =
        portable::decode_multi_byte<Traits>;
    decltype(&portable::encode_multi_byte<Traits>) encode =
        portable::encode_multi_byte<Traits>;
};

struct TableKernels {
    SbcsDecodeKernel decode_sbcs_complete = nullptr;
    SbcsDecodeKernel decode_sbcs = nullptr;
    SbcsEncodeKernel encode_sbcs = nullptr;
    std::tuple<MultiByteKernels<Micsft_932_Traits>, MultiByteKernels<Shift_JIS_Traits>,
               MultiByteKernels<Micsft_936_Traits>, MultiByteKernels<GBK_Traits>,
               MultiByteKernels<Micsft_949_Traits>, MultiByteKernels<Micsft_950_Traits>,
               MultiByteKernels<Big5_Traits>, MultiByteKernels<Big5_HKSCS_Traits>,
               MultiByteKernels<GB18030Traits>>
        multi_byte;

    template <class Traits>
    const MultiByteKernels<Traits>& of() const noexcept
    {
        return std::get<MultiByteKernels<Traits>>(multi_byte);
    }
};

extern const TableKernels portable_table_kernels;
#if defined(__x86_64__)
// For machines that have the instructions. AVX2 has kernels for single-byte charsets.
extern const TableKernels avx2_table_kernels;
extern const TableKernels avx512_table_kernels;
#endif

// The best set for this machine.
const TableKernels& table_kernels() noexcept;

// For tests: the set to use from now on; null lets the machine decide again.
void use_table_kernels(const TableKernels* set) noexcept;

}  // namespace kiv

#endif
