// decimal/companion_calls.h - the companion's functions by the type that they work on.

#ifndef KIV_DECIMAL_COMPANION_CALLS_H
#define KIV_DECIMAL_COMPANION_CALLS_H

#include <kiv/kdecimal.h>

#include "char/companion_decimal.h"

namespace kiv::decimal {

template <class Decimal>
struct Companion;

#define KIV_COMPANION(WIDTH)                                              \
    template <>                                                           \
    struct Companion<decimal##WIDTH> {                                    \
        static constexpr auto absolute = kivDec##WIDTH##Abs;              \
        static constexpr auto add = kivDec##WIDTH##Add;                   \
        static constexpr auto class_of = kivDec##WIDTH##Class;            \
        static constexpr auto compare = kivDec##WIDTH##Compare;           \
        static constexpr auto copy_sign = kivDec##WIDTH##CopySign;        \
        static constexpr auto from_int64 = kivDec##WIDTH##FromInt64;      \
        static constexpr auto from_uint64 = kivDec##WIDTH##FromUInt64;    \
        static constexpr auto format = kivDec##WIDTH##FormatString;       \
        static constexpr auto log_b = kivDec##WIDTH##LogB;                \
        static constexpr auto not_equal = kivDec##WIDTH##QuietNotEqual;   \
        static constexpr auto parsed = kivDec##WIDTH##ParseGetValue;      \
        static constexpr auto remainder = kivDec##WIDTH##Remainder;       \
        static constexpr auto round_exact = kivDec##WIDTH##RoundExact;    \
        static constexpr auto round_half_up = kivDec##WIDTH##RoundHalfUp; \
        static constexpr auto scale_b = kivDec##WIDTH##ScaleB;            \
        static constexpr auto to_int32 = kivDec##WIDTH##ToInt32;          \
        static constexpr auto to_int64 = kivDec##WIDTH##ToInt64;          \
    };
KIV_COMPANION(32)
KIV_COMPANION(64)
KIV_COMPANION(128)
#undef KIV_COMPANION

}  // namespace kiv::decimal

#endif
