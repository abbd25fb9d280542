// charset/table_kernels.h - the inner loops that need a charset's tables.
//
// The contract is that of the kernels in kernels.h. Every coder has a plain loop
// of its own, which is the reference and complete; a kernel that is null is not
// there for the machine's instructions.

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

// index, data: the tables of the direction. Both may stop at what is not a
// single code unit.
template <class Traits>
struct DbcsKernels {
    DecodeProgress (*decode)(const std::uint16_t* index,
                             const typename Traits::DecodeEntry* data,
                             const unsigned char* in, const unsigned char* in_end,
                             char16* out, char16* out_end) = nullptr;
    EncodeProgress (*encode)(const std::uint16_t* index, const std::uint16_t* data,
                             const char16* in, const char16* in_end, unsigned char* out,
                             unsigned char* out_end) = nullptr;
};

// For GB 18030: stop at what takes four bytes.
struct GB18030Traits {
    using DecodeEntry = char16_t;
};

struct TableKernels {
    SbcsDecodeKernel decode_sbcs_complete = nullptr;
    SbcsDecodeKernel decode_sbcs = nullptr;
    SbcsEncodeKernel encode_sbcs = nullptr;
    std::tuple<DbcsKernels<Micsft_932_Traits>, DbcsKernels<Shift_JIS_Traits>,
               DbcsKernels<Micsft_936_Traits>, DbcsKernels<GBK_Traits>,
               DbcsKernels<Micsft_949_Traits>, DbcsKernels<Micsft_950_Traits>,
               DbcsKernels<Big5_Traits>, DbcsKernels<Big5_HKSCS_Traits>,
               DbcsKernels<GB18030Traits>>
        multi_byte;

    template <class Traits>
    const DbcsKernels<Traits>& of() const noexcept
    {
        return std::get<DbcsKernels<Traits>>(multi_byte);
    }
};

extern const TableKernels no_table_kernels;
#if defined(__x86_64__)
// For machines that have the instructions. AVX2: single-byte charsets only.
extern const TableKernels avx2_table_kernels;
extern const TableKernels avx512_table_kernels;
#endif

// The best set for this machine.
const TableKernels& table_kernels() noexcept;

// For tests: the set to use from now on; null lets the machine decide again.
void use_table_kernels(const TableKernels* set) noexcept;

}  // namespace kiv

#endif
