// Addition and subtraction of arrays for x86-64. No compiler keeps a carry in the flags
// around a loop; so kept, it costs nothing.

#ifndef KIVXX_BIGINT_CARRY_X86_64_H
#define KIVXX_BIGINT_CARRY_X86_64_H

#if defined(__x86_64__)

    #include "bigint/words.h"

namespace kiv::words {

// r = a + b, r = a - b, n limbs, n may be 0. The carry, the borrow.

// Four limbs at a time, then one at a time. LEA, DEC and JRCXZ leave the carry alone.
    #define KIV_CARRY_LOOP(instruction)           \
        "xorl %k[carry], %k[carry]\n\t"           \
        "jrcxz 2f\n"                              \
        "1:\n\t"                                  \
        "movq (%[a]), %[t0]\n\t"                  \
        "movq 8(%[a]), %[t1]\n\t"                 \
        "movq 16(%[a]), %[t2]\n\t"                \
        "movq 24(%[a]), %[t3]\n\t"                \
        "leaq 32(%[a]), %[a]\n\t" instruction     \
        " (%[b]), %[t0]\n\t" instruction          \
        " 8(%[b]), %[t1]\n\t" instruction         \
        " 16(%[b]), %[t2]\n\t" instruction        \
        " 24(%[b]), %[t3]\n\t"                    \
        "leaq 32(%[b]), %[b]\n\t"                 \
        "movq %[t0], (%[r])\n\t"                  \
        "movq %[t1], 8(%[r])\n\t"                 \
        "movq %[t2], 16(%[r])\n\t"                \
        "movq %[t3], 24(%[r])\n\t"                \
        "leaq 32(%[r]), %[r]\n\t"                 \
        "decq %%rcx\n\t"                          \
        "jnz 1b\n"                                \
        "2:\n\t"                                  \
        "movq %[rest], %%rcx\n\t"                 \
        "jrcxz 4f\n"                              \
        "3:\n\t"                                  \
        "movq (%[a]), %[t0]\n\t"                  \
        "leaq 8(%[a]), %[a]\n\t" instruction      \
        " (%[b]), %[t0]\n\t"                      \
        "leaq 8(%[b]), %[b]\n\t"                  \
        "movq %[t0], (%[r])\n\t"                  \
        "leaq 8(%[r]), %[r]\n\t"                  \
        "decq %%rcx\n\t"                          \
        "jnz 3b\n"                                \
        "4:\n\t"                                  \
        "adcl $0, %k[carry]\n"

    #define KIV_DEFINE_CARRY_LOOP(name, instruction)                                    \
        inline Limb name(Word* r, const Word* a, const Word* b, unsigned n) noexcept           \
        {                                                                               \
            Limb carry, t0, t1, t2, t3;                                                 \
            Limb blocks = n / 4;                                                        \
            const Limb rest = n % 4;                                                    \
            asm volatile(KIV_CARRY_LOOP(instruction)                                    \
                         : [carry] "=&r"(carry), [t0] "=&r"(t0), [t1] "=&r"(t1),        \
                           [t2] "=&r"(t2), [t3] "=&r"(t3), [r] "+r"(r), [a] "+r"(a),    \
                           [b] "+r"(b), "+c"(blocks)                                    \
                         : [rest] "r"(rest)                                             \
                         : "memory", "cc");                                             \
            return carry;                                                               \
        }

KIV_DEFINE_CARRY_LOOP(add_limbs_x86_64, "adcq")
KIV_DEFINE_CARRY_LOOP(subtract_limbs_x86_64, "sbbq")

    #undef KIV_CARRY_LOOP
    #undef KIV_DEFINE_CARRY_LOOP

}  // namespace kiv::words

#endif

#endif
