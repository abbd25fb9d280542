// kiv/big_uint.h - unsigned integer of 32-bit words for exact number conversion.
//
// Arithmetic is fixed-width: it works modulo 2^(32 * size()), never changes
// size(), and reports what did not fit through its return value. Size the target
// first and trim() afterwards:
//
//     auto product = kiv::big_uint::make_uninitialized(a.size() + b.size());
//     product.multiply(a, b);
//     product.trim();
//
// Word 0 is the least significant. The size is at least one word; words at the top
// may be zero everywhere. Values of up to 256 bits live inside the object and
// never allocate.
//
// Where a target is too short, is one of the operands although it must not be, or
// an operand has a wrong size, std::invalid_argument names the operation and
// nothing has changed. A growth that fails leaves the object unchanged.
//
// Distinct objects may be used from distinct threads; one object may not.

#ifndef KIV_BIG_UINT_H
#define KIV_BIG_UINT_H

#include <algorithm>
#include <compare>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>

#include <kiv/char16.h>
#include <kiv/export.h>

namespace kiv {

class KIV_API big_uint {
public:
    // Words stored inside the object.
    static constexpr unsigned MIN_RESERVED = 8;

    // --- Construction ----------------------------------------------------------

    big_uint() noexcept : m_words(m_local), m_reserved(MIN_RESERVED), m_size(1)
    {
        m_local[0] = 0;
    }
    // One word, or two if the value needs them. Parentheses enclose a value; braces
    // enclose words.
    big_uint(unsigned value) noexcept : big_uint() { m_local[0] = value; }
    big_uint(unsigned long value) noexcept : big_uint(std::uint64_t{value}, 0) {}
    big_uint(unsigned long long value) noexcept : big_uint(std::uint64_t{value}, 0) {}
    template <std::unsigned_integral T>
    requires(sizeof(T) < sizeof(unsigned)) big_uint(T value)
    noexcept : big_uint(unsigned{value}) {}
    // Throws std::invalid_argument for a negative value.
    template <std::signed_integral T>
    requires(sizeof(T) <= sizeof(long long)) big_uint(T value)
        : big_uint(not_negative(value))
    {
    }
    // One word per element, the first is word 0. Throws std::invalid_argument for
    // an empty list, std::length_error for more than max_size().
    big_uint(std::initializer_list<unsigned> words);

    // The capacity of a copy is the size of its source.
    big_uint(const big_uint& other);
    // A source with a block of its own hands it over and keeps one word of
    // unspecified value; another is copied.
    big_uint(big_uint&& other) noexcept;
    constexpr ~big_uint() { destroy(); }

    big_uint& operator=(const big_uint& other);
    // As the constructor; if both have a block, they exchange them.
    big_uint& operator=(big_uint&& other) noexcept;
    void swap(big_uint& other) noexcept;
    friend void swap(big_uint& a, big_uint& b) noexcept { a.swap(b); }

    // Words of undefined content. Throw std::invalid_argument if size is 0 or
    // above capacity, std::length_error above max_size().
    static big_uint make_uninitialized(unsigned size);
    static big_uint make_uninitialized(unsigned size, unsigned capacity);

    // --- Size, in words --------------------------------------------------------

    unsigned size() const noexcept { return m_size; }
    unsigned reserved() const noexcept { return m_reserved; }
    static constexpr unsigned max_size() noexcept { return 65535; }
    static constexpr unsigned min_reserved() noexcept { return MIN_RESERVED; }
    constexpr bool is_local() const noexcept { return m_reserved == MIN_RESERVED; }

    // Makes room for n words. Throws std::length_error above max_size().
    void reserve(unsigned n);
    // Grows with zero words or drops the top words; returns the word pointer,
    // which growth invalidates. Throws std::invalid_argument if n is 0 and
    // std::length_error if n > max_size().
    std::uint32_t* set_size(unsigned n);
    // Grows by one word, the new most significant one. Throws std::length_error.
    void prepend(unsigned word);
    // Drops zero words from the top, down to one word.
    void trim() noexcept;

    const std::uint32_t* data() const noexcept { return m_words; }
    std::uint32_t* data() noexcept { return m_words; }
    // i must be below size().
    const std::uint32_t& operator[](unsigned i) const noexcept { return m_words[i]; }
    std::uint32_t& operator[](unsigned i) noexcept { return m_words[i]; }

    // --- Comparison of values --------------------------------------------------

    // -1, 0 or 1.
    int compare(const big_uint& other) const noexcept;
    bool equals(const big_uint& other) const noexcept;
    friend bool operator==(const big_uint& a, const big_uint& b) noexcept
    {
        return a.equals(b);
    }
    friend std::strong_ordering operator<=>(const big_uint& a, const big_uint& b) noexcept
    {
        return a.compare(b) <=> 0;
    }

    bool is_equal(unsigned w) const noexcept
    {
        return m_words[0] == w && leading_words_are_zero();
    }
    bool is_not_equal(unsigned w) const noexcept { return !is_equal(w); }
    bool is_less(unsigned w) const noexcept
    {
        return m_words[0] < w && leading_words_are_zero();
    }
    bool is_less_equal(unsigned w) const noexcept { return !is_greater(w); }
    bool is_greater(unsigned w) const noexcept
    {
        return m_words[0] > w || !leading_words_are_zero();
    }
    bool is_greater_equal(unsigned w) const noexcept { return !is_less(w); }
    bool is_zero() const noexcept { return is_equal(0); }
    // Also true for zero.
    bool is_power_of_two() const noexcept;

    // --- Bits --------------------------------------------------------------------

    // -1 for zero.
    int highest_set_bit() const noexcept;
    int lowest_set_bit() const noexcept;
    // highest_set_bit() + 1.
    unsigned bit_length() const noexcept
    {
        return static_cast<unsigned>(highest_set_bit() + 1);
    }
    // The number of 1 bits.
    unsigned bit_count() const noexcept;

    // i must be below 32 * size().
    bool test_bit(unsigned i) const noexcept
    {
        return (m_words[i / 32] >> i % 32 & 1) != 0;
    }
    void set_bit(unsigned i) noexcept { m_words[i / 32] |= std::uint32_t{1} << i % 32; }
    void clear_bit(unsigned i) noexcept
    {
        m_words[i / 32] &= ~(std::uint32_t{1} << i % 32);
    }

    // The most significant word in use, its top bit, and that bit as a mask.
    unsigned msw() const noexcept { return m_words[m_size - 1U]; }
    bool msb() const noexcept { return msw() >> 31 != 0; }
    unsigned msbx() const noexcept { return msb() ? 0xFFFFFFFFU : 0U; }
    // Bit 0.
    bool lsb() const noexcept { return (m_words[0] & 1) != 0; }

    // All words of this: of a & b, of ~a. Throw std::invalid_argument if an operand
    // is shorter.
    void bit_and(const big_uint& a, const big_uint& b);
    void bit_not(const big_uint& a);

    // Of machine words. Leading and trailing zeros of 0: the width.
    static unsigned bit_count(int w) noexcept
    {
        return bit_count(static_cast<unsigned>(w));
    }
    static unsigned bit_count(unsigned w) noexcept;
    static unsigned bit_count(unsigned long w) noexcept;
    static unsigned bit_count(unsigned long long w) noexcept;
    static unsigned lzcnt32(unsigned w) noexcept;
    static unsigned lzcnt64(unsigned long long w) noexcept;
    static unsigned tzcnt(int w) noexcept { return tzcnt(static_cast<unsigned>(w)); }
    static unsigned tzcnt(unsigned w) noexcept;
    static unsigned tzcnt(unsigned long w) noexcept;
    static unsigned tzcnt(unsigned long long w) noexcept;

    // --- Conversion ----------------------------------------------------------------

    // The low 32 or 64 bits.
    std::uint32_t to_uint32() const noexcept { return m_words[0]; }
    std::uint64_t to_uint64() const noexcept;
    // Decimal digits. O(size() squared).
    std::string to_string() const;
    ustring to_ustring() const;

    // --- Addition and subtraction; n is size(), B is 2^32 ---------------------------

    // (a + b) mod B^n. True if a + b does not fit. A word w has 32 bits everywhere:
    // wider arguments are cut, so make a big_uint of them.
    bool add(const big_uint& a, const big_uint& b) noexcept;
    // *this + b, of which the low n words count. The carry out of the top. Throws
    // std::invalid_argument if b is shorter.
    bool add(const big_uint& b);
    bool add(unsigned w) noexcept;

    // (a - b) mod B^n. Floor((a - b) / B^n) clamped to -2..2: negative if a < b, 0
    // if the difference fits, positive if it is too long.
    int subtract(const big_uint& a, const big_uint& b) noexcept;
    // *this - b. -1 if *this was less, else 0. Throws std::invalid_argument if b is
    // longer.
    int subtract(const big_uint& b);

    // True if the value wrapped to zero, or to all ones.
    bool increment() noexcept;
    bool decrement() noexcept;

    // --- Multiplication --------------------------------------------------------------

    // *this *= w. The carry word out of the top. O(n).
    unsigned multiply(unsigned w) noexcept;
    unsigned multiply_by_10() noexcept;
    unsigned multiply_by_100() noexcept;

    // a * b. O(a.size() * b.size()). Throws std::invalid_argument if
    // size() < a.size() + b.size() or if *this is a or b.
    void multiply(const big_uint& a, const big_uint& b);

    // --- Division --------------------------------------------------------------------
    //
    // By zero: std::overflow_error "divide by zero".

    // *this /= d. The remainder. O(n).
    unsigned divide(unsigned d);
    unsigned divide_by_10() noexcept;

    // Floor(a / b), and a mod b in r. Targets may be operands. With na and nb words,
    // a and b are their low words. Without leading zero words |a| and |b| long:
    // throws std::invalid_argument if size() < |a| - |b| + 1 (where |a| >= |b|),
    // r.size() < |b|, r is *this, or na or nb is 0 or beyond its operand. Throws
    // std::length_error if |a| is max_size() and |b| > 1: the dividend needs a word more.
    // O((|a| - |b| + 1) * |b|).
    void divide(const big_uint& a, const big_uint& b);
    void divide(const big_uint& a, const big_uint& b, big_uint& r);
    void divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb);
    void divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb,
                big_uint& r);

    // --- Shifts: bits that leave the width are lost, zeros come in ---------------------

    void shift_left() noexcept;
    void shift_right() noexcept;
    // By any k, in bits.
    void shift_left(unsigned k) noexcept;
    void shift_right(unsigned k) noexcept;
    // Of a, into the width of this.
    void shift_left(const big_uint& a, unsigned k) noexcept;
    void shift_right(const big_uint& a, unsigned k) noexcept;

    // --- Powers and logarithms -----------------------------------------------------

    static const unsigned long long pow5_table[28];   // 5^0 .. 5^27
    static const unsigned long long pow10_table[20];  // 10^0 .. 10^19

    // Fills *buf with 5^e and returns it. Throws std::length_error if e >= 32768.
    // Safe from any thread.
    static const big_uint& pow5(unsigned e, big_uint* buf);
    // 10^e: up to 10^77 a constant, *buf is untouched; else fills *buf and returns it.
    // Throws std::out_of_range if e >= 8192.
    static const big_uint& pow10(unsigned e, big_uint* buf);
    // The constant 10^e, null from 10^78 on.
    static const big_uint* precomputed_pow10(unsigned e) noexcept;

    // For a value whose highest set bit is h: floor(log10) if the result is not
    // negative as a signed number; -k means k for values from 10^k on, else k - 1.
    // Throws std::out_of_range if h >= 256.
    static unsigned log10est(unsigned h);
    // floor(log10), -1 for zero. `bits` is the bit_length(), for those who have it;
    // throws std::invalid_argument if it is beyond size().
    int ilog10() const;
    int ilog10(unsigned bits) const;

    // What a right shift by k would discard: 2 for its highest bit, 1 for any other;
    // so 1 is below one half of the last bit kept, 2 one half, 3 above.
    unsigned compute_rounding_info(unsigned k) const noexcept;

private:
    struct noinit_t {};
    struct constant_t {};
    friend union BigUintConstant;

    big_uint(noinit_t, unsigned size) { alloc(size, size); }
    big_uint(noinit_t, unsigned size, unsigned capacity) { alloc(size, capacity); }
    // A constant that is never destroyed: beyond MIN_RESERVED it refers to its words.
    constexpr big_uint(constant_t, const std::uint32_t* words, unsigned size) noexcept
        : m_words(size <= MIN_RESERVED ? m_local : const_cast<std::uint32_t*>(words)),
          m_reserved(static_cast<std::uint16_t>(std::max(size, MIN_RESERVED))),
          m_size(static_cast<std::uint16_t>(size)),
          m_local()
    {
        if (size <= MIN_RESERVED)
            std::copy_n(words, size, m_local);
    }
    // The tag keeps the overloads for the two 64-bit types apart.
    big_uint(std::uint64_t value, int) noexcept;

    template <std::signed_integral T>
    static unsigned long long not_negative(T value)
    {
        if (value < 0)
            refuse_negative();
        return static_cast<unsigned long long>(value);
    }
    [[noreturn]] static void refuse_negative();

    // For an object without storage.
    void alloc(unsigned size, unsigned capacity);
    constexpr void destroy() noexcept
    {
        if (!is_local())
            delete[] m_words;
    }
    int ilog10_of_long(unsigned highest_bit) const;
    // Hands the words over; the object is local with one word.
    std::uint32_t* detach() noexcept;
    // A new block with the low words of the old storage.
    void grow(unsigned capacity, unsigned kept);
    // In size() words.
    void assign(const std::uint32_t* words, unsigned n) noexcept;
    // For sizes that are not all the same.
    bool add_any(const big_uint& a, const big_uint& b) noexcept;
    int subtract_any(const big_uint& a, const big_uint& b) noexcept;
    // r may be null.
    void divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb,
                big_uint* r);
    void divide_short(const std::uint32_t* a, unsigned na, const std::uint32_t* b,
                      unsigned nb, big_uint* r);
    void divide_by_two_limbs(const std::uint32_t* a, unsigned na, const std::uint32_t* b,
                             unsigned nb, big_uint* r);
    void divide_long(const std::uint32_t* a, unsigned na, const std::uint32_t* b,
                     unsigned nb, big_uint* r);
    bool leading_words_are_zero() const noexcept
    {
        for (unsigned i = 1; i < m_size; ++i)
            if (m_words[i] != 0)
                return false;
        return true;
    }

    std::uint32_t* m_words;    // m_local, or a block of m_reserved words
    std::uint16_t m_reserved;  // MIN_RESERVED if and only if m_words is m_local
    std::uint16_t m_size;      // at least 1
    std::uint32_t m_local[MIN_RESERVED];
};

}  // namespace kiv

#endif
