// big_uint: powers of five and ten, decimal logarithms.

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <utility>

#include <kiv/big_uint.h>

#include "bigint/powers.h"
#include "bigint/words.h"

namespace kiv {

using words::Limb;
using words::Word;

constinit const unsigned long long big_uint::pow5_table[28] = {
    1U,
    5U,
    25U,
    125U,
    625U,
    3125U,
    15625U,
    78125U,
    390625U,
    1953125U,
    9765625U,
    48828125U,
    244140625U,
    1220703125U,
    6103515625U,
    30517578125U,
    152587890625U,
    762939453125U,
    3814697265625U,
    19073486328125U,
    95367431640625U,
    476837158203125U,
    2384185791015625U,
    11920928955078125U,
    59604644775390625U,
    298023223876953125U,
    1490116119384765625U,
    7450580596923828125U,
};

constinit const unsigned long long big_uint::pow10_table[20] = {
    1U,
    10U,
    100U,
    1000U,
    10000U,
    100000U,
    1000000U,
    10000000U,
    100000000U,
    1000000000U,
    10000000000U,
    100000000000U,
    1000000000000U,
    10000000000000U,
    100000000000000U,
    1000000000000000U,
    10000000000000000U,
    100000000000000000U,
    1000000000000000000U,
    10000000000000000000U,
};

// --- Constants made by the compiler ------------------------------------------------

namespace {

constexpr unsigned SMALL_POWERS = 78;  // 10^77 is the last power of up to 256 bits
constexpr unsigned SQUARES = 13;       // 10^(2^0) .. 10^(2^12)

// floor(e * log2(10)), which is 14267572527.20 / 2^32.
constexpr unsigned highest_bit_of_pow10(unsigned e) noexcept
{
    return static_cast<unsigned>(e * std::uint64_t{14267572527} >> 32);
}

template <unsigned E>
using Pow10Words = std::array<Word, highest_bit_of_pow10(E) / 32 + 1>;

template <unsigned E>
constexpr Pow10Words<E> small_pow10() noexcept
{
    Pow10Words<E> words{1};
    for (unsigned i = 0; i < E; ++i) {
        Limb carry = 0;
        for (Word& word : words) {
            carry += Limb{word} * 10;
            word = static_cast<Word>(carry);
            carry >>= 32;
        }
    }
    return words;
}

template <unsigned K>
constexpr Pow10Words<1U << K> square_of_pow10() noexcept
{
    if constexpr (K <= 4) {
        return small_pow10<1U << K>();
    } else {
        constexpr auto root = square_of_pow10<K - 1>();
        constexpr unsigned n = root.size();
        constexpr unsigned zeros = (1U << (K - 1)) / 32;  // words at the bottom
        Pow10Words<1U << K> words{};
        // Plain pointers: compilers count the steps, and calls among them.
        const Word* const a = root.data();
        Word* const r = words.data();
        for (unsigned i = zeros; i < n; ++i) {
            Limb carry = 0;
            for (unsigned j = zeros; j < n; ++j) {
                carry += Limb{a[i]} * a[j] + r[i + j];
                r[i + j] = static_cast<Word>(carry);
                carry >>= 32;
            }
            if (i + n < words.size())
                r[i + n] = static_cast<Word>(carry);
        }
        return words;
    }
}

template <unsigned E>
constexpr auto SMALL_POW10 = small_pow10<E>();
template <unsigned K>
constexpr auto SQUARE_OF_POW10 = square_of_pow10<K>();

// -k where a value with this highest bit may be below 10^k or not, else its logarithm.
constexpr auto LOG10_ESTIMATES = [] {
    std::array<signed char, 256> table{};
    table[3] = -1;
    for (unsigned i = 2; i < SMALL_POWERS; ++i)
        table[highest_bit_of_pow10(i)] = static_cast<signed char>(-static_cast<int>(i));
    for (unsigned h = 4; h < table.size(); ++h)
        if (table[h] == 0)
            table[h] =
                static_cast<signed char>(table[h - 1] < 0 ? -table[h - 1] : table[h - 1]);
    return table;
}();

}  // namespace

// A value that is never destroyed, so that static objects of users may use it.
union BigUintConstant {
    template <std::size_t N>
    constexpr explicit BigUintConstant(const std::array<Word, N>& words) noexcept
        : value(big_uint::constant_t(), words.data(), unsigned{N})
    {
    }
    constexpr ~BigUintConstant() {}

    big_uint value;
};

namespace {

template <class>
struct SmallPowers;
template <unsigned... E>
struct SmallPowers<std::integer_sequence<unsigned, E...>> {
    static constinit const BigUintConstant table[];
};
template <unsigned... E>
constinit const BigUintConstant
    SmallPowers<std::integer_sequence<unsigned, E...>>::table[] = {
        BigUintConstant(SMALL_POW10<E>)...};

template <class>
struct Squares;
template <unsigned... K>
struct Squares<std::integer_sequence<unsigned, K...>> {
    static constinit const BigUintConstant table[];
};
template <unsigned... K>
constinit const BigUintConstant Squares<std::integer_sequence<unsigned, K...>>::table[] =
    {BigUintConstant(SQUARE_OF_POW10<K>)...};

constexpr const BigUintConstant* small_powers =
    SmallPowers<std::make_integer_sequence<unsigned, SMALL_POWERS>>::table;
constexpr const BigUintConstant* squares =
    Squares<std::make_integer_sequence<unsigned, SQUARES>>::table;

// 5^(2^k), made when they are first needed and never freed.
constexpr unsigned SQUARES_OF_5 = 15;
constinit std::atomic<const big_uint*> squares_of_5[SQUARES_OF_5];

const big_uint& square_of_5(unsigned k)
{
    std::atomic<const big_uint*>& slot = squares_of_5[k];
    if (const big_uint* power = slot.load(std::memory_order_acquire))
        return *power;

    auto fresh = std::make_unique<big_uint>();
    if ((1U << k) < std::size(big_uint::pow5_table)) {
        *fresh = big_uint::pow5_table[1U << k];
    } else {
        const big_uint& root = square_of_5(k - 1);
        *fresh = big_uint::make_uninitialized(2 * root.size());
        fresh->multiply(root, root);
        fresh->trim();
    }
    const big_uint* winner = nullptr;
    if (slot.compare_exchange_strong(winner, fresh.get(), std::memory_order_acq_rel,
                                     std::memory_order_acquire))
        return *fresh.release();
    return *winner;
}

void multiply_by(big_uint& product, const big_uint& factor)
{
    auto wider = big_uint::make_uninitialized(product.size() + factor.size());
    wider.multiply(product, factor);
    wider.trim();
    product.swap(wider);
}

}  // namespace

// --- Powers ----------------------------------------------------------------------------

const big_uint& big_uint::pow5(unsigned e, big_uint* buf)
{
    if (e >= 1U << SQUARES_OF_5)
        throw std::length_error("big_uint::pow5: exponent out of range");
    if (e < std::size(pow5_table))
        return *buf = pow5_table[e];

    unsigned k = e % 32 < std::size(pow5_table) ? 5 : 4;
    big_uint power = pow5_table[e % (1U << k)];
    for (; e >> k != 0; ++k)
        if ((e >> k & 1) != 0)
            multiply_by(power, square_of_5(k));
    return *buf = std::move(power);
}

const big_uint& bigint::pow5(unsigned e, big_uint* buf)
{
    if (e < 1U << SQUARES_OF_5)
        return big_uint::pow5(e, buf);
    big_uint root_buf;
    const big_uint& root = bigint::pow5(e / 2, &root_buf);
    big_uint power = root;
    multiply_by(power, root);
    if (e % 2 != 0)
        multiply_by(power, 5U);
    return *buf = std::move(power);
}

const big_uint& big_uint::pow10(unsigned e, big_uint* buf)
{
    if (e < SMALL_POWERS)
        return small_powers[e].value;
    if (e >= 1U << SQUARES)
        throw std::out_of_range("big_uint::pow10");
    big_uint power = small_powers[e % 64].value;
    for (unsigned k = 6; e >> k != 0; ++k)
        if ((e >> k & 1) != 0)
            multiply_by(power, squares[k].value);
    return *buf = std::move(power);
}

const big_uint* big_uint::precomputed_pow10(unsigned e) noexcept
{
    return e < SMALL_POWERS ? &small_powers[e].value : nullptr;
}

// --- Logarithms ------------------------------------------------------------------------

unsigned big_uint::log10est(unsigned h)
{
    if (h >= LOG10_ESTIMATES.size())
        throw std::out_of_range("invalid array<T, N> subscript");
    return static_cast<unsigned>(int{LOG10_ESTIMATES[h]});
}

int big_uint::ilog10() const
{
    return ilog10(bit_length());
}

int big_uint::ilog10(unsigned bits) const
{
    if (bits == 0)
        return -1;
    if (bits > 32U * m_size)
        throw std::invalid_argument("big_uint::ilog10: not the bit length");
    if (bits > LOG10_ESTIMATES.size())
        return ilog10_of_long(bits - 1);
    const std::int8_t estimate = LOG10_ESTIMATES[bits - 1];
    if (estimate >= 0)
        return estimate;
    const int k = -estimate;
    return compare(small_powers[k].value) >= 0 ? k : k - 1;
}

// The top 64 bits tell the logarithm to 1e-9. Only near a power of ten, and at one,
// must the values be compared.
int big_uint::ilog10_of_long(unsigned h) const
{
    constexpr double LOG10_2 = 0.30102999566398119521;
    constexpr double TOLERANCE = 1e-8;

    const unsigned skip = h / 32 - 2;
    const unsigned bits = h % 32 + 1;  // of the top word
    const Limb top =
        words::load(m_words + skip + 1) << (32 - bits) | Limb{m_words[skip]} >> bits;
    const double log = (std::log2(static_cast<double>(top)) + (h - 63)) * LOG10_2;
    const int k = static_cast<int>(log + TOLERANCE);
    if (static_cast<int>(log - TOLERANCE) == k)
        return k;

    // v >= 10^k if and only if floor(v / 2^k) >= 5^k.
    big_uint buf;
    const big_uint& power = bigint::pow5(static_cast<unsigned>(k), &buf);
    auto shifted = make_uninitialized(m_size);
    shifted.shift_right(*this, static_cast<unsigned>(k));
    return shifted >= power ? k : k - 1;
}

}  // namespace kiv
