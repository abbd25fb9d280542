// The portable inner loops, and the choice between them and others.

#include "bigint/kernels.h"

#include "platform/cpu.h"

namespace kiv::words {

namespace {

Limb add_product_portable(Word* r, const Word* a, unsigned n, Limb w) noexcept
{
    Limb carry = 0;
    for (unsigned i = 0; i < 2 * n; i += 2) {
        const Wide product = multiply_add(load(a + i), w, load(r + i), carry);
        store(r + i, product.low);
        carry = product.high;
    }
    return carry;
}

}  // namespace

constinit const Kernels portable_kernels = {multiply_limbs_portable, add_product_portable,
                                            nullptr};

constinit std::atomic<const Kernels*> chosen_kernels = nullptr;

const Kernels& choose_kernels() noexcept
{
#if defined(__x86_64__)
    const Kernels& set = !platform::cpu_has_adx()          ? portable_kernels
                         : platform::cpu_has_avx512_ifma() ? ifma_kernels
                                                           : adx_kernels;
#else
    const Kernels& set = portable_kernels;
#endif
    use_kernels(set);
    return set;
}

void use_kernels(const Kernels& set) noexcept
{
    chosen_kernels.store(&set, std::memory_order_relaxed);
}

}  // namespace kiv::words
