// companion/decimal/words.h - unsigned integers of 128 and 256 bits: what exact products
// and quotients of coefficients need, and no more.

#ifndef KIV_COMPANION_DECIMAL_WORDS_H
#define KIV_COMPANION_DECIMAL_WORDS_H

#include <bit>
#include <compare>
#include <cstdint>
#include <type_traits>

namespace kiv::companion {

__extension__ using uint128 = unsigned __int128;

constexpr std::uint64_t low_word(uint128 x) noexcept
{
    return static_cast<std::uint64_t>(x);
}

constexpr std::uint64_t high_word(uint128 x) noexcept
{
    return static_cast<std::uint64_t>(x >> 64);
}

struct uint256 {
    uint128 low = 0;
    uint128 high = 0;

    constexpr uint256() = default;
    constexpr uint256(uint128 value) noexcept : low(value) {}
    constexpr uint256(uint128 high_half, uint128 low_half) noexcept
        : low(low_half), high(high_half)
    {
    }

    explicit constexpr operator uint128() const noexcept { return low; }
    explicit constexpr operator std::uint64_t() const noexcept { return low_word(low); }

    friend constexpr bool operator==(const uint256&, const uint256&) = default;
    friend constexpr std::strong_ordering operator<=>(const uint256& a,
                                                      const uint256& b) noexcept
    {
        if (a.high != b.high)
            return a.high < b.high ? std::strong_ordering::less
                                   : std::strong_ordering::greater;
        return a.low < b.low    ? std::strong_ordering::less
               : a.low == b.low ? std::strong_ordering::equal
                                : std::strong_ordering::greater;
    }
    friend constexpr uint256 operator+(const uint256& a, const uint256& b) noexcept
    {
        const uint128 sum = a.low + b.low;
        return {a.high + b.high + (sum < a.low), sum};
    }
    friend constexpr uint256 operator-(const uint256& a, const uint256& b) noexcept
    {
        return {a.high - b.high - (a.low < b.low), a.low - b.low};
    }
    friend constexpr uint256 operator<<(const uint256& a, int n) noexcept
    {
        if (n >= 128)
            return {a.low << (n - 128), 0};
        return n == 0 ? a : uint256{a.high << n | a.low >> (128 - n), a.low << n};
    }
    friend constexpr uint256 operator>>(const uint256& a, int n) noexcept
    {
        if (n >= 128)
            return {0, a.high >> (n - 128)};
        return n == 0 ? a : uint256{a.high >> n, a.low >> n | a.high << (128 - n)};
    }
};

// --- Bits in use, 0 for 0 ----------------------------------------------------------

constexpr int bit_length(std::uint64_t x) noexcept
{
    return 64 - std::countl_zero(x);
}

constexpr int bit_length(uint128 x) noexcept
{
    return high_word(x) != 0 ? 64 + bit_length(high_word(x)) : bit_length(low_word(x));
}

constexpr int bit_length(const uint256& x) noexcept
{
    return x.high != 0 ? 128 + bit_length(x.high) : bit_length(x.low);
}

// --- The exact product of two words, twice as wide ------------------------------------

constexpr uint128 wide_product(std::uint64_t a, std::uint64_t b) noexcept
{
    return uint128{a} * b;
}

constexpr uint256 wide_product(uint128 a, uint128 b) noexcept
{
    const uint128 low = wide_product(low_word(a), low_word(b));
    const uint128 cross = wide_product(low_word(a), high_word(b)) + high_word(low);
    const uint128 middle = wide_product(high_word(a), low_word(b)) + low_word(cross);
    const uint128 high =
        wide_product(high_word(a), high_word(b)) + high_word(cross) + high_word(middle);
    return {high, middle << 64 | low_word(low)};
}

constexpr std::uint64_t high_product(std::uint64_t a, std::uint64_t b) noexcept
{
    return high_word(wide_product(a, b));
}

constexpr uint128 high_product(uint128 a, uint128 b) noexcept
{
    return wide_product(a, b).high;
}

// a * b where the product is known to fit.
constexpr std::uint64_t product(std::uint64_t a, std::uint64_t b) noexcept
{
    return a * b;
}

constexpr uint128 product(uint128 a, std::uint64_t b) noexcept
{
    return a * b;
}

constexpr uint256 product(const uint256& a, uint128 b) noexcept
{
    uint256 result = wide_product(a.low, b);
    result.high += a.high * b;
    return result;
}

// --- Division ----------------------------------------------------------------------

template <class Word>
struct Quotient {
    Word value;
    Word remainder;
};

// a / b for a.high < b.
constexpr Quotient<std::uint64_t> divide_wide(uint128 a, std::uint64_t b) noexcept
{
#if defined(__x86_64__)
    if (!std::is_constant_evaluated()) {
        Quotient<std::uint64_t> q;
        asm("divq %4"
            : "=a"(q.value), "=d"(q.remainder)
            : "a"(low_word(a)), "d"(high_word(a)), "r"(b)
            : "cc");
        return q;
    }
#endif
    return {low_word(a / b), low_word(a % b)};
}

// One step of long division: the 192 bits `a`, `next` by a b with its top bit set, a < b.
// The top words give a quotient that is at most 2 too large (Knuth, 4.3.1, theorem B).
constexpr Quotient<uint128> divide_step(uint128 a, std::uint64_t next, uint128 b) noexcept
{
    std::uint64_t q = ~std::uint64_t{0};
    if (high_word(a) < high_word(b))
        q = divide_wide(a, high_word(b)).value;
    const uint256 dividend{high_word(a), a << 64 | next};
    uint256 subtrahend = product(uint256(b), q);
    while (subtrahend > dividend) {
        --q;
        subtrahend = subtrahend - b;
    }
    return {q, (dividend - subtrahend).low};
}

// a / b for a.high < b.
constexpr Quotient<uint128> divide_wide(const uint256& a, uint128 b) noexcept
{
    if (a.high == 0 && high_word(a.low | b) == 0)
        return {low_word(a.low) / low_word(b), low_word(a.low) % low_word(b)};
    if (b == 0)
        __builtin_unreachable();
    const int shift = 128 - bit_length(b);
    const uint256 dividend = a << shift;
    b <<= shift;
    const auto high = divide_step(dividend.high, high_word(dividend.low), b);
    const auto low = divide_step(high.remainder, low_word(dividend.low), b);
    return {high.value << 64 | low.value, low.remainder >> shift};
}

// x / b in place; returns the remainder.
constexpr std::uint64_t divide_in_place(uint256* x, std::uint64_t b) noexcept
{
    std::uint64_t words[] = {low_word(x->low), high_word(x->low), low_word(x->high),
                             high_word(x->high)};
    std::uint64_t remainder = 0;
    for (int i = 3; i >= 0; --i) {
        const auto q = divide_wide(uint128{remainder} << 64 | words[i], b);
        words[i] = q.value;
        remainder = q.remainder;
    }
    *x = {uint128{words[3]} << 64 | words[2], uint128{words[1]} << 64 | words[0]};
    return remainder;
}

}  // namespace kiv::companion

#endif
