// Inner loops of multiplication with MULX (BMI2), ADCX and ADOX (ADX): two carries are
// under way at once, and no compiler makes use of that.

#if defined(__x86_64__)

    #include "bigint/kernels.h"

namespace kiv::words {

// clang-format off

// One limb: the product's low half plus the high half of the one before, plus, where
// the target is added to, the target.
    #define KIV_PRODUCT(offset, high_before, high)            \
        "mulxq " offset "(%[a]), %[low], %[" high "]\n\t"     \
        "adcxq %[" high_before "], %[low]\n\t"
    #define KIV_STORE(offset) "movq %[low], " offset "(%[r])\n\t"
    #define KIV_ADD(offset) "adoxq " offset "(%[r]), %[low]\n\t"

    #define KIV_MULTIPLY(offset, high_before, high) \
        KIV_PRODUCT(offset, high_before, high) KIV_STORE(offset)
    #define KIV_ADD_PRODUCT(offset, high_before, high) \
        KIV_PRODUCT(offset, high_before, high) KIV_ADD(offset) KIV_STORE(offset)

// Blocks of four limbs, at least one block.
    #define KIV_PRODUCT_LOOP(step) \
        asm volatile("xorl %k[zero], %k[zero]\n"                                       \
                     "1:\n\t"                                                          \
                     step("", "carry", "high")                                         \
                     step("8", "high", "carry")                                        \
                     step("16", "carry", "high")                                       \
                     step("24", "high", "carry")                                       \
                     "leaq 32(%[a]), %[a]\n\t"                                         \
                     "leaq 32(%[r]), %[r]\n\t"                                         \
                     "leaq -1(%%rcx), %%rcx\n\t"                                       \
                     "jrcxz 2f\n\t"                                                    \
                     "jmp 1b\n"                                                        \
                     "2:\n\t"                                                          \
                     "adcxq %[zero], %[carry]\n\t"                                     \
                     "adoxq %[zero], %[carry]\n"                                       \
                     : [zero] "=&r"(zero), [low] "=&r"(low), [high] "=&r"(high),       \
                       [carry] "+&r"(carry), [r] "+&r"(r), [a] "+&r"(a),               \
                       "+&c"(blocks)                                                   \
                     : "d"(w)                                                          \
                     : "memory", "cc")

// clang-format on

// What is no block of four comes first.
Limb multiply_adx(Word* r, const Word* a, unsigned n, Limb w, Limb carry) noexcept
{
    for (unsigned i = n % 4; i != 0; --i, a += 2, r += 2) {
        const Wide product = multiply_add(load(a), w, carry);
        store(r, product.low);
        carry = product.high;
    }
    Limb blocks = n / 4;
    if (blocks != 0) {
        Limb zero, low, high;
        KIV_PRODUCT_LOOP(KIV_MULTIPLY);
    }
    return carry;
}

Limb add_product_adx(Word* r, const Word* a, unsigned n, Limb w) noexcept
{
    Limb carry = 0;
    for (unsigned i = n % 4; i != 0; --i, a += 2, r += 2) {
        const Wide product = multiply_add(load(a), w, load(r), carry);
        store(r, product.low);
        carry = product.high;
    }
    Limb blocks = n / 4;
    if (blocks != 0) {
        Limb zero, low, high;
        KIV_PRODUCT_LOOP(KIV_ADD_PRODUCT);
    }
    return carry;
}

constinit const Kernels adx_kernels = {multiply_adx, add_product_adx, nullptr};

}  // namespace kiv::words

#endif
