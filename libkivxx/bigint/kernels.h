// The inner loops of addition and multiplication. They count in limbs and know nothing
// of an odd top word; a target may be an operand, at the same place.

#ifndef KIV_BIGINT_KERNELS_H
#define KIV_BIGINT_KERNELS_H

#include <atomic>

#include "bigint/carry_x86_64.h"
#include "bigint/words.h"

namespace kiv::words {

// r = a + b, r = a - b, n limbs, n may be 0. The carry, the borrow.
inline Limb add_limbs_portable(Word* r, const Word* a, const Word* b, unsigned n) noexcept
{
    Limb carry = 0;
    for (unsigned i = 0; i < 2 * n; i += 2)
        store(r + i, add_carry(load(a + i), load(b + i), carry));
    return carry;
}

inline Limb subtract_limbs_portable(Word* r, const Word* a, const Word* b,
                                    unsigned n) noexcept
{
    Limb borrow = 0;
    for (unsigned i = 0; i < 2 * n; i += 2)
        store(r + i, subtract_borrow(load(a + i), load(b + i), borrow));
    return borrow;
}

inline Limb add_limbs(Word* r, const Word* a, const Word* b, unsigned n) noexcept
{
#if defined(__x86_64__)
    return add_limbs_x86_64(r, a, b, n);
#else
    return add_limbs_portable(r, a, b, n);
#endif
}

inline Limb subtract_limbs(Word* r, const Word* a, const Word* b, unsigned n) noexcept
{
#if defined(__x86_64__)
    return subtract_limbs_x86_64(r, a, b, n);
#else
    return subtract_limbs_portable(r, a, b, n);
#endif
}

// above:high:low += x
inline void accumulate_portable(Wide x, Limb& low, Limb& high, Limb& above) noexcept
{
    Limb carry = 0;
    low = add_carry(low, x.low, carry);
    high = add_carry(high, x.high, carry);
    above += carry;
}

inline void accumulate(Wide x, Limb& low, Limb& high, Limb& above) noexcept
{
#if defined(__x86_64__)
    accumulate_x86_64(x, low, high, above);
#else
    accumulate_portable(x, low, high, above);
#endif
}

// r = a * w + carry, n limbs, n may be 0. The limb above.
inline Limb multiply_limbs_portable(Word* r, const Word* a, unsigned n, Limb w,
                                    Limb carry) noexcept
{
    for (unsigned i = 0; i < 2 * n; i += 2) {
        const Wide product = multiply_add(load(a + i), w, carry);
        store(r + i, product.low);
        carry = product.high;
    }
    return carry;
}

// What depends on the machine that it runs on, and is worth a call.
struct Kernels {
    Limb (*multiply)(Word* r, const Word* a, unsigned n, Limb w, Limb carry) noexcept;
    // r += a * w, n limbs, n may be 0. The limb above.
    Limb (*add_product)(Word* r, const Word* a, unsigned n, Limb w) noexcept;
    // r = a * b, na + nb limbs, both at most MAX_BLOCK; null if it would not pay.
    void (*multiply_block)(Word* r, const Word* a, unsigned na, const Word* b,
                           unsigned nb) noexcept;
};

constexpr unsigned MAX_BLOCK = 256;

extern const Kernels portable_kernels;
#if defined(__x86_64__)
extern const Kernels adx_kernels;
extern const Kernels ifma_kernels;
Limb multiply_adx(Word* r, const Word* a, unsigned n, Limb w, Limb carry) noexcept;
Limb add_product_adx(Word* r, const Word* a, unsigned n, Limb w) noexcept;
#endif

// Null until first asked for. Threads that ask at once find the same answer.
extern std::atomic<const Kernels*> chosen_kernels;
const Kernels& choose_kernels() noexcept;

// The fastest set that the machine has.
inline const Kernels& kernels() noexcept
{
    const Kernels* set = chosen_kernels.load(std::memory_order_relaxed);
    return set != nullptr ? *set : choose_kernels();
}

// For tests: uses this set from now on.
void use_kernels(const Kernels& set) noexcept;

}  // namespace kiv::words

#endif
