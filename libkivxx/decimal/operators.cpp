// Operators and functions that the companion has as they are.

#include <kiv/decimal.h>

#include "char/companion_decimal.h"

namespace kiv::decimal {

namespace {

int companion_mode(rounding direction) noexcept
{
    switch (direction) {
    case rounding::nearest_away:
        return DEC_NEAREST_AWAY;
    case rounding::toward_zero:
        return DEC_TOWARD_ZERO;
    case rounding::upward:
        return DEC_UPWARD;
    case rounding::downward:
        return DEC_DOWNWARD;
    default:
        return DEC_NEAREST_EVEN;
    }
}

std::partial_ordering ordering(int order) noexcept
{
    return order == DEC_UNORDERED ? std::partial_ordering::unordered : order <=> 0;
}

}  // namespace

#define KIV_UNARY(WIDTH, NAME, FUNCTION)                             \
    decimal##WIDTH NAME(decimal##WIDTH x) noexcept                   \
    {                                                                \
        return decimal##WIDTH(kivDec##WIDTH##FUNCTION(x.pattern())); \
    }

#define KIV_BINARY(WIDTH, NAME, FUNCTION)                                         \
    decimal##WIDTH NAME(decimal##WIDTH x, decimal##WIDTH y) noexcept              \
    {                                                                             \
        return decimal##WIDTH(kivDec##WIDTH##FUNCTION(x.pattern(), y.pattern())); \
    }

#define KIV_OPERATORS(WIDTH)                                                          \
    KIV_BINARY(WIDTH, operator+, Add)                                                 \
    KIV_BINARY(WIDTH, operator-, Subtract)                                            \
    KIV_BINARY(WIDTH, operator*, Multiply)                                            \
    KIV_BINARY(WIDTH, operator/, Divide)                                              \
    KIV_BINARY(WIDTH, min, MinNum)                                                    \
    KIV_BINARY(WIDTH, max, MaxNum)                                                    \
    KIV_BINARY(WIDTH, quantize, Quantize)                                             \
    KIV_UNARY(WIDTH, sqrt, Sqrt)                                                      \
    KIV_UNARY(WIDTH, nextUp, NextUp)                                                  \
    KIV_UNARY(WIDTH, nextDown, NextDown)                                              \
    decimal##WIDTH fma(decimal##WIDTH x, decimal##WIDTH y, decimal##WIDTH z) noexcept \
    {                                                                                 \
        return decimal##WIDTH(                                                        \
            kivDec##WIDTH##Fma(x.pattern(), y.pattern(), z.pattern()));               \
    }                                                                                 \
    decimal##WIDTH rint(decimal##WIDTH x, rounding direction) noexcept                \
    {                                                                                 \
        return decimal##WIDTH(                                                        \
            kivDec##WIDTH##Rint(x.pattern(), companion_mode(direction)));             \
    }                                                                                 \
    bool sameQuantum(decimal##WIDTH x, decimal##WIDTH y) noexcept                     \
    {                                                                                 \
        return kivDec##WIDTH##SameQuantum(x.pattern(), y.pattern()) != 0;             \
    }                                                                                 \
    bool operator==(decimal##WIDTH x, decimal##WIDTH y) noexcept                      \
    {                                                                                 \
        return kivDec##WIDTH##QuietNotEqual(x.pattern(), y.pattern()) == 0;           \
    }                                                                                 \
    std::partial_ordering operator<=>(decimal##WIDTH x, decimal##WIDTH y) noexcept    \
    {                                                                                 \
        return ordering(kivDec##WIDTH##Compare(x.pattern(), y.pattern()));            \
    }
KIV_OPERATORS(32)
KIV_OPERATORS(64)
KIV_OPERATORS(128)
#undef KIV_OPERATORS
#undef KIV_BINARY
#undef KIV_UNARY

#define KIV_WIDTHS(TO, FROM)                                  \
    decimal##TO::decimal##TO(decimal##FROM value) noexcept    \
        : m_pattern(kivDec##FROM##ToDec##TO(value.pattern())) \
    {                                                         \
    }
KIV_WIDTHS(32, 64)
KIV_WIDTHS(32, 128)
KIV_WIDTHS(64, 32)
KIV_WIDTHS(64, 128)
KIV_WIDTHS(128, 32)
KIV_WIDTHS(128, 64)
#undef KIV_WIDTHS

}  // namespace kiv::decimal
