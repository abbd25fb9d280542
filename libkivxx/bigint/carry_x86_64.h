// Addition and subtraction of arrays for x86-64. No compiler keeps a carry in the flags
// around a loop; so kept, it costs nothing.

#ifndef KIV_BIGINT_CARRY_X86_64_H
#define KIV_BIGINT_CARRY_X86_64_H

#if defined(__x86_64__)

    #include "bigint/words.h"

namespace kiv::words {

    // clang-format off

// Four limbs at a time, then one at a time. LEA, DEC and JRCXZ leave the carry alone.
    #define KIV_CARRY_STEP(instruction, offset)      \
        "movq " offset "(%[a]), %[t]\n\t"            \
        instruction " " offset "(%[b]), %[t]\n\t"    \
        "movq %[t], " offset "(%[r])\n\t"

    #define KIV_CARRY_ADVANCE(bytes)                 \
        "leaq " bytes "(%[a]), %[a]\n\t"             \
        "leaq " bytes "(%[b]), %[b]\n\t"             \
        "leaq " bytes "(%[r]), %[r]\n\t"             \
        "decq %%rcx\n\t"

    #define KIV_CARRY_LOOP(instruction) \
        "xorl %k[carry], %k[carry]\n\t"              \
        "jrcxz 2f\n"                                 \
        "1:\n\t"                                     \
        KIV_CARRY_STEP(instruction, "")              \
        KIV_CARRY_STEP(instruction, "8")             \
        KIV_CARRY_STEP(instruction, "16")            \
        KIV_CARRY_STEP(instruction, "24")            \
        KIV_CARRY_ADVANCE("32")                      \
        "jnz 1b\n"                                   \
        "2:\n\t"                                     \
        "movq %[rest], %%rcx\n\t"                    \
        "jrcxz 4f\n"                                 \
        "3:\n\t"                                     \
        KIV_CARRY_STEP(instruction, "")              \
        KIV_CARRY_ADVANCE("8")                       \
        "jnz 3b\n"                                   \
        "4:\n\t"                                     \
        "adcl $0, %k[carry]\n"

    // clang-format on

    #define KIV_DEFINE_CARRY_LOOP(name, instruction)                                 \
        inline Limb name(Word* r, const Word* a, const Word* b, unsigned n) noexcept \
        {                                                                            \
            Limb carry, t;                                                           \
            Limb blocks = n / 4;                                                     \
            const Limb rest = n % 4;                                                 \
            asm volatile(KIV_CARRY_LOOP(instruction)                                 \
                         : [carry] "=&r"(carry), [t] "=&r"(t), [r] "+&r"(r),         \
                           [a] "+&r"(a), [b] "+&r"(b), "+&c"(blocks)                 \
                         : [rest] "r"(rest)                                          \
                         : "memory", "cc");                                          \
            return carry;                                                            \
        }

// r = a + b, r = a - b, n limbs, n may be 0. The carry, the borrow.
KIV_DEFINE_CARRY_LOOP(add_limbs_x86_64, "adcq")
KIV_DEFINE_CARRY_LOOP(subtract_limbs_x86_64, "sbbq")

// above:high:low += x
inline void accumulate_x86_64(Wide x, Limb& low, Limb& high, Limb& above) noexcept
{
    asm("addq %[x0], %[low]\n\t"
        "adcq %[x1], %[high]\n\t"
        "adcq $0, %[above]"
        : [low] "+&r"(low), [high] "+&r"(high), [above] "+r"(above)
        : [x0] "r"(x.low), [x1] "r"(x.high)
        : "cc");
}

    #undef KIV_CARRY_STEP
    #undef KIV_CARRY_ADVANCE
    #undef KIV_CARRY_LOOP
    #undef KIV_DEFINE_CARRY_LOOP

}  // namespace kiv::words

#endif

#endif
