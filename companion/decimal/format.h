// companion/decimal/format.h - the three interchange formats: fields of a pattern, and
// the pattern of fields.

#ifndef KIV_COMPANION_DECIMAL_FORMAT_H
#define KIV_COMPANION_DECIMAL_FORMAT_H

#include <algorithm>

#include <kiv/kdecimal.h>

#include "companion/decimal/powers.h"

namespace kiv::companion {

// `Word` holds twice a coefficient, `Wide` the product of two. The small form has a
// coefficient of N bits below the biased exponent, the large form one of N + 1 bits that
// begins with 100 and is cut by these three.
template <class KDecimal, class BitsType, class WordType, class WideType, int WIDTH_,
          int DIGITS_, int BIAS_, int MAX_EXPONENT_, int N_>
struct Format {
    using Value = KDecimal;
    using Bits = BitsType;
    using Word = WordType;
    using Wide = WideType;
    static constexpr int DIGITS = DIGITS_;
    static constexpr int BIAS = BIAS_;
    static constexpr int MAX_EXPONENT = MAX_EXPONENT_;  // biased; the least one is 0
    static constexpr int N = N_;

    static constexpr Bits SIGN = Bits{1} << (WIDTH_ - 1);
    static constexpr Bits LARGE = Bits{3} << (WIDTH_ - 3);
    static constexpr Bits INFINITY_BITS = Bits{0x78} << (WIDTH_ - 8);
    static constexpr Bits NAN_BITS = Bits{0x7C} << (WIDTH_ - 8);
    static constexpr Bits SIGNALLING = Bits{2} << (WIDTH_ - 8);
    static constexpr Bits EXPONENT_MASK = (Bits{1} << (WIDTH_ - 1 - N)) - 1;
    static constexpr Bits PAYLOAD_MASK = (Bits{1} << (N - 3)) - 1;

    static constexpr Word LIMIT = pow10<Word>(DIGITS);  // above every coefficient
    static constexpr Word LEAST_FULL = pow10<Word>(DIGITS - 1);
    static constexpr const auto& RECIPROCAL = RECIPROCALS<Word, DIGITS>;
};

using Format32 =
    Format<KDecimal32, std::uint32_t, std::uint64_t, uint128, 32, 7, 101, 191, 23>;
using Format64 =
    Format<KDecimal64, std::uint64_t, std::uint64_t, uint128, 64, 16, 398, 767, 53>;
using Format128 =
    Format<KDecimal128, uint128, uint128, uint256, 128, 34, 6176, 12287, 113>;

inline std::uint32_t bits_of(KDecimal32 x) noexcept
{
    return x.bits;
}
inline std::uint64_t bits_of(KDecimal64 x) noexcept
{
    return x.bits;
}
inline uint128 bits_of(KDecimal128 x) noexcept
{
    return uint128{x.high} << 64 | x.low;
}

inline KDecimal32 value_of(std::uint32_t bits) noexcept
{
    return {bits};
}
inline KDecimal64 value_of(std::uint64_t bits) noexcept
{
    return {bits};
}
inline KDecimal128 value_of(uint128 bits) noexcept
{
    return {low_word(bits), high_word(bits)};
}

// --- Kinds -------------------------------------------------------------------------

// Neither infinite nor a NaN.
template <class F>
constexpr bool is_finite(typename F::Bits x) noexcept
{
    return (x & F::INFINITY_BITS) != F::INFINITY_BITS;
}

template <class F>
constexpr bool is_nan(typename F::Bits x) noexcept
{
    return (x & F::NAN_BITS) == F::NAN_BITS;
}

template <class F>
constexpr bool is_infinite(typename F::Bits x) noexcept
{
    return (x & F::NAN_BITS) == F::INFINITY_BITS;
}

template <class F>
constexpr bool is_signalling(typename F::Bits x) noexcept
{
    return is_nan<F>(x) && (x & F::SIGNALLING) != 0;
}

// x as a quiet NaN whose payload is in range.
template <class F>
constexpr typename F::Bits quiet(typename F::Bits x) noexcept
{
    const typename F::Bits payload = x & F::PAYLOAD_MASK;
    return (x & F::SIGN) | F::NAN_BITS | (payload < F::LEAST_FULL ? payload : 0);
}

// The NaN that two operands give, one of which is one.
template <class F>
constexpr typename F::Bits first_nan(typename F::Bits x, typename F::Bits y) noexcept
{
    return quiet<F>(is_nan<F>(x) ? x : y);
}

// --- Finite values -----------------------------------------------------------------

template <class F>
struct Number {
    typename F::Bits sign;  // 0 or F::SIGN
    int exponent;           // of the last digit, biased
    typename F::Word coefficient;
};

template <class F>
constexpr Number<F> unpack(typename F::Bits x) noexcept
{
    using Bits = typename F::Bits;
    Number<F> number;
    number.sign = x & F::SIGN;
    if ((x & F::LARGE) != F::LARGE) [[likely]] {
        number.exponent = static_cast<int>((x >> F::N) & F::EXPONENT_MASK);
        number.coefficient = x & ((Bits{1} << F::N) - 1);
    } else {
        constexpr Bits TOP = Bits{1} << F::N;
        number.exponent = static_cast<int>((x >> (F::N - 2)) & F::EXPONENT_MASK);
        number.coefficient = TOP | (x & ((TOP >> 2) - 1));
    }
    if (number.coefficient >= F::LIMIT)
        number.coefficient = 0;
    return number;
}

// What fits: an exponent in range and a coefficient below F::LIMIT.
template <class F>
constexpr typename F::Bits pack(typename F::Bits sign, int exponent,
                                typename F::Word coefficient) noexcept
{
    using Bits = typename F::Bits;
    const auto biased = static_cast<Bits>(exponent);
    const auto digits = static_cast<Bits>(coefficient);
    if (coefficient >> F::N == 0) [[likely]]
        return sign | biased << F::N | digits;
    return sign | F::LARGE | biased << (F::N - 2) |
           (digits & ((Bits{1} << (F::N - 2)) - 1));
}

template <class F>
constexpr typename F::Bits pack_zero(typename F::Bits sign, int exponent) noexcept
{
    return pack<F>(sign, std::clamp(exponent, 0, F::MAX_EXPONENT), 0);
}

// x itself, or the canonical pattern of the same value.
template <class F>
constexpr typename F::Bits canonical(typename F::Bits x) noexcept
{
    if (is_finite<F>(x)) {
        const Number<F> number = unpack<F>(x);
        return pack<F>(number.sign, number.exponent, number.coefficient);
    }
    return is_nan<F>(x) ? quiet<F>(x) : (x & F::SIGN) | F::INFINITY_BITS;
}

}  // namespace kiv::companion

#endif
