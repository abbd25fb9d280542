// Products of arrays with AVX-512 IFMA: eight products of 52-bit digits at a time. The
// product is formed by columns, so that no carry is looked at before a column's sum is
// complete.

#if defined(__x86_64__)

    #include <immintrin.h>

    #include <algorithm>

    #include "bigint/kernels.h"

    // The file is compiled for the common machine: only what is so marked needs more.
    #define KIV_IFMA [[gnu::target("avx512f,avx512ifma")]]

namespace kiv::words {

namespace {

constexpr unsigned DIGIT_BITS = 52;
constexpr Limb DIGIT_MASK = (Limb{1} << DIGIT_BITS) - 1;
// A column's two sums of 52-bit halves stay below 2^62.
constexpr unsigned MAX_DIGITS = (64 * MAX_BLOCK + DIGIT_BITS - 1) / DIGIT_BITS;

constexpr unsigned LANES = 8;
constexpr unsigned VECTORS = 4;
constexpr unsigned COLUMNS = LANES * VECTORS;  // formed together

unsigned to_digits(Limb* digits, const Word* a, unsigned limbs) noexcept
{
    const unsigned count = (64 * limbs + DIGIT_BITS - 1) / DIGIT_BITS;
    for (unsigned i = 0; i < count; ++i) {
        const unsigned limb = i * DIGIT_BITS / 64;
        const unsigned shift = i * DIGIT_BITS % 64;
        Limb digit = load(a + 2 * limb) >> shift;
        if (shift > 64 - DIGIT_BITS && limb + 1 < limbs)
            digit |= load(a + 2 * limb + 2) << (64 - shift);
        digits[i] = digit & DIGIT_MASK;
    }
    return count;
}

// Takes columns in ascending order and stores limbs.
struct Packer {
    void put(Limb low_half, Limb high_half) noexcept
    {
        carry += low_half + high_before;
        high_before = high_half;
        const Limb digit = carry & DIGIT_MASK;
        carry >>= DIGIT_BITS;
        pending |= digit << bits;
        bits += DIGIT_BITS;
        if (bits >= 64) {
            bits -= 64;
            if (r != end) {
                store(r, pending);
                r += 2;
            }
            pending = digit >> (DIGIT_BITS - bits);
        }
    }

    Word* r;
    const Word* end;
    Limb carry = 0;
    Limb high_before = 0;
    Limb pending = 0;
    unsigned bits = 0;
};

KIV_IFMA void multiply_block(Word* r, const Word* a, unsigned na, const Word* b,
                             unsigned nb) noexcept
{
    // Digits that are not there are 0, before the first and behind the last.
    alignas(64) Limb padded[COLUMNS + MAX_DIGITS + COLUMNS];
    Limb db[MAX_DIGITS];
    Limb* const da = padded + COLUMNS;
    const unsigned nda = to_digits(da, a, na);
    const unsigned ndb = to_digits(db, b, nb);
    std::fill(padded, da, Limb{0});
    std::fill(da + nda, da + nda + COLUMNS, Limb{0});

    Packer packer{r, r + 2 * (na + nb)};
    for (unsigned column = 0; packer.r != packer.end; column += COLUMNS) {
        __m512i low[VECTORS] = {};
        __m512i high[VECTORS] = {};
        const unsigned first = column >= nda ? column - nda + 1 : 0;
        const unsigned last = std::min(column + COLUMNS, ndb);
        for (unsigned j = first; j < last; ++j) {
            const __m512i factor = _mm512_set1_epi64(static_cast<long long>(db[j]));
            const Limb* const row = da + (static_cast<int>(column) - static_cast<int>(j));
            for (unsigned v = 0; v < VECTORS; ++v) {
                const __m512i digits = _mm512_loadu_si512(row + LANES * v);
                low[v] = _mm512_madd52lo_epu64(low[v], digits, factor);
                high[v] = _mm512_madd52hi_epu64(high[v], digits, factor);
            }
        }
        alignas(64) Limb sums[2][COLUMNS];
        for (unsigned v = 0; v < VECTORS; ++v) {
            _mm512_store_si512(sums[0] + LANES * v, low[v]);
            _mm512_store_si512(sums[1] + LANES * v, high[v]);
        }
        for (unsigned i = 0; i < COLUMNS; ++i)
            packer.put(sums[0][i], sums[1][i]);
    }
}

}  // namespace

constinit const Kernels ifma_kernels = {multiply_adx, add_product_adx, multiply_block};

}  // namespace kiv::words

#endif
