// The set of the AVX-512 kernels.

#if defined(__x86_64__)

    #include "charset/avx512.h"

namespace kiv {

namespace {

template <class Traits>
constexpr MultiByteKernels<Traits> KERNELS = {avx512::decode_multi_byte<Traits>,
                                              avx512::encode_multi_byte<Traits>};

}  // namespace

constinit const TableKernels avx512_table_kernels = {
    .decode_sbcs_complete = avx512::decode_sbcs_complete,
    .decode_sbcs = avx512::decode_sbcs,
    .encode_sbcs = avx512::encode_sbcs,
    .multi_byte = {KERNELS<Micsft_932_Traits>, KERNELS<Shift_JIS_Traits>,
                   KERNELS<Micsft_936_Traits>, KERNELS<GBK_Traits>,
                   KERNELS<Micsft_949_Traits>, KERNELS<Micsft_950_Traits>,
                   KERNELS<Big5_Traits>, KERNELS<Big5_HKSCS_Traits>,
                   KERNELS<GB18030Traits>},
};

}  // namespace kiv

#endif
