// big_uint: division. D. Knuth, The Art of Computer Programming 2, 4.3.1, algorithm D,
// in limbs, with a reciprocal of the divisor's top two limbs.

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <kiv/big_uint.h>

#include "bigint/kernels.h"
#include "bigint/reciprocal.h"
#include "bigint/scratch.h"
#include "bigint/words.h"

namespace kiv {

using words::Limb;
using words::Wide;
using words::Word;

// --- Arrays ----------------------------------------------------------------------------

namespace words {

namespace {

// high * 2^64 + low by d, whose top bit is set and which is above high.
Limb divide_two_by_one(Limb high, Limb low, Limb d) noexcept
{
#if defined(__x86_64__)
    // The compiler would call a function for any 128 bits by any other.
    Limb quotient;
    asm("divq %[d]" : "=a"(quotient), "+d"(high) : "a"(low), [d] "r"(d) : "cc");
    return quotient;
#elif defined(__SIZEOF_INT128__)
    return static_cast<Limb>(join({high, low}) / d);
#else
    // Two digits of 32 bits.
    Limb quotient = 0;
    for (int i = 0; i < 2; ++i) {
        Limb digit = std::min<Limb>(high / (d >> 32), 0xFFFFFFFF);
        const Limb next = low >> 32;
        Wide product = multiply(digit, d);
        const Wide value = {high >> 32, high << 32 | next};
        while (is_less(value, product)) {
            --digit;
            product = subtract(product, {0, d});
        }
        high = subtract(value, product).low;
        low <<= 32;
        quotient = quotient << 32 | digit;
    }
    return quotient;
#endif
}

}  // namespace

Limb Reciprocal::invert(Limb d) noexcept
{
    return divide_two_by_one(~d, ALL_ONES, d);
}

WideReciprocal::WideReciprocal(Wide d) noexcept : m_d(d), m_v(Reciprocal::invert(d.high))
{
    Limb p = d.high * m_v + d.low;
    if (p < d.low) {
        --m_v;
        if (p >= d.high) {
            --m_v;
            p -= d.high;
        }
        p -= d.high;
    }
    const Wide t = words::multiply(m_v, d.low);
    p += t.high;
    if (p < t.high) {
        --m_v;
        if (!is_less({p, t.low}, d))
            --m_v;
    }
}

Limb divide(Word* q, unsigned nq, const Word* a, unsigned n, Limb d) noexcept
{
    const auto shift = static_cast<unsigned>(std::countl_zero(d));
    const Reciprocal divisor(d << shift);
    // The bits that a limb lends to the one above; none if there is no shift.
    const auto lent = [shift](Limb limb) { return limb >> 1 >> (63 - shift); };

    unsigned i = (n - 1) & ~1U;
    const Limb top = load_low(a + i, n - i);
    Limb below = i != 0 ? load(a + i - 2) : 0;
    Limb digit = 0;
    Limb r = top << shift | lent(below);
    if (top >= d) {
        const Limb low = r;
        r = lent(top);
        digit = divisor.divide(r, low);
    }
    if (i + 2 <= nq)
        store(q + i, digit);
    else if (i < nq)
        q[i] = static_cast<Word>(digit);
    while (i != 0) {
        i -= 2;
        const Limb limb = below;
        below = i != 0 ? load(a + i - 2) : 0;
        store(q + i, divisor.divide(r, limb << shift | lent(below)));
    }
    return r >> shift;
}

namespace {

// What follows counts in limbs.

inline Limb limb(const Word* p, unsigned i) noexcept
{
    return load(p + 2 * i);
}

inline void set_limb(Word* p, unsigned i, Limb value) noexcept
{
    store(p + 2 * i, value);
}

// a, n words, shifted left by k < 64, into whole limbs, each combined with `mask` by
// exclusive or.
void normalise(Word* to, unsigned limbs, const Word* a, unsigned n, unsigned k,
               Limb mask) noexcept
{
    Limb below = 0;
    unsigned i = 0;
    const auto put = [&](Limb next) {
        set_limb(to, i++, (next << k | below >> 1 >> (63 - k)) ^ mask);
        below = next;
    };
    while (i < n / 2)
        put(limb(a, i));
    if (n % 2 != 0)
        put(a[n - 1]);
    if (i < limbs)
        put(0);
}

// The dividend is kept as its complement, so that to subtract a product from it is to
// add one: ~(u - x) = ~u + x, and the borrow is the carry.
//
// u has nu limbs, v has nv >= 2 with the top bit set, the top limb of u is below that
// of v. Leaves the quotient in the nu - nv limbs of u from nv on, and below them the
// remainder's complement.
void divide_normalised(Word* u, unsigned nu, const Word* v, unsigned nv) noexcept
{
    const Kernels& set = kernels();
    const Wide top{limb(v, nv - 1), limb(v, nv - 2)};
    const WideReciprocal divisor(top);
    Wide r{~limb(u, nu - 1), ~limb(u, nu - 2)};
    unsigned i = nu - 1;
    // Numbers whose top bits are in the same place have nothing in the top limb.
    if (nu > nv && r.high == 0 && is_less({r.low, ~limb(u, nu - 3)}, top)) {
        r = {r.low, ~limb(u, nu - 3)};
        set_limb(u, i--, 0);
    }
    for (; i >= nv; --i) {
        Word* const low = u + 2 * (i - nv);  // the remainder's lowest limb
        Limb digit;
        if (r.high == top.high && r.low == top.low) [[unlikely]] {
            // The quotient of these and the next limb would not fit, the digit does.
            digit = ALL_ONES;
            set_limb(u, i - 1, ~r.low);
            set.add_product(low, v, nv, digit);
            r = {~limb(u, i - 1), ~limb(u, i - 2)};
        } else {
            digit = divisor.divide(r, ~limb(u, i - 2));
            if (nv > 2) {
                const Limb borrow = set.add_product(low, v, nv - 2, digit);
                const bool negative = is_less(r, {0, borrow});
                r = subtract(r, {0, borrow});
                if (negative) [[unlikely]] {
                    --digit;
                    const Limb carry = subtract_limbs(low, low, v, nv - 2);
                    r = add(add(r, top), {0, carry});
                }
            }
        }
        set_limb(u, i, digit);
    }
    set_limb(u, nv - 1, ~r.high);
    set_limb(u, nv - 2, ~r.low);
}

// The remainder from its complement, shifted back by k, into n words.
void store_remainder(Word* to, unsigned n, const Word* u, unsigned k) noexcept
{
    unsigned i = 0;
    Limb value = ~limb(u, 0);
    for (; 2 * i + 2 < n; ++i) {
        const Limb above = ~limb(u, i + 1);
        set_limb(to, i, value >> k | above << 1 << (63 - k));
        value = above;
    }
    value >>= k;
    if (2 * i + 1 < n)
        set_limb(to, i, value);
    else
        to[2 * i] = static_cast<Word>(value);
}

}  // namespace

}  // namespace words

// --- big_uint --------------------------------------------------------------------------

unsigned big_uint::divide(unsigned d)
{
    if (d == 0)
        throw std::overflow_error("divide by zero");
    return static_cast<unsigned>(words::divide(m_words, m_size, m_words, m_size, d));
}

unsigned big_uint::divide_by_10() noexcept
{
    return static_cast<unsigned>(words::divide(m_words, m_size, m_words, m_size, 10));
}

void big_uint::divide(const big_uint& a, const big_uint& b)
{
    divide(a, a.m_size, b, b.m_size, nullptr);
}

void big_uint::divide(const big_uint& a, const big_uint& b, big_uint& r)
{
    divide(a, a.m_size, b, b.m_size, &r);
}

void big_uint::divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb)
{
    divide(a, na, b, nb, nullptr);
}

void big_uint::divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb,
                      big_uint& r)
{
    divide(a, na, b, nb, &r);
}

void big_uint::divide(const big_uint& a, unsigned na, const big_uint& b, unsigned nb,
                      big_uint* r)
{
    if (na == 0 || na > a.m_size || nb == 0 || nb > b.m_size)
        throw std::invalid_argument("big_uint::divide: operand without so many words");
    na = words::significant(a.m_words, na);
    nb = words::significant(b.m_words, nb);
    if (nb == 1 && b.m_words[0] == 0)
        throw std::overflow_error("divide by zero");
    if (na >= nb && m_size < na - nb + 1)
        throw std::invalid_argument("big_uint::divide: quotient too short");
    if (r != nullptr && r->m_size < nb)
        throw std::invalid_argument("big_uint::divide: remainder too short");
    if (r == this)
        throw std::invalid_argument("big_uint::divide: quotient is the remainder");
    // The dividend takes a word more while it is divided.
    if (nb > 1 && na == max_size())
        throw std::length_error("big_uint::max_size() exceeded");

    if (na < nb) {
        if (r != nullptr)
            r->assign(a.m_words, na);
        words::clear(m_words, m_size);
    } else if (nb <= 2) {
        divide_short(a.m_words, na, b.m_words, nb, r);
    } else if (nb <= 4) {
        divide_by_two_limbs(a.m_words, na, b.m_words, nb, r);
    } else {
        divide_long(a.m_words, na, b.m_words, nb, r);
    }
}

void big_uint::assign(const Word* words, unsigned n) noexcept
{
    words::copy(words, n, m_words);
    words::clear(m_words + n, m_size - n);
}

void big_uint::divide_short(const Word* a, unsigned na, const Word* b, unsigned nb,
                            big_uint* r)
{
    const unsigned nq = na - nb + 1;
    const Limb remainder = words::divide(m_words, nq, a, na, words::load_low(b, nb));
    words::clear(m_words + nq, m_size - nq);
    if (r != nullptr) {
        if (nb == 2)
            words::store(r->m_words, remainder);
        else
            r->m_words[0] = static_cast<Word>(remainder);
        words::clear(r->m_words + nb, r->m_size - nb);
    }
}

// As the short division, which it is but for the size of a digit.
void big_uint::divide_by_two_limbs(const Word* a, unsigned na, const Word* b, unsigned nb,
                                   big_uint* r)
{
    using words::load;

    const Limb high = words::load_low(b + 2, nb - 2);
    const Limb low = load(b);
    const auto shift = static_cast<unsigned>(std::countl_zero(high));
    const auto lent = [shift](Limb limb) { return limb >> 1 >> (63 - shift); };
    const words::WideReciprocal divisor({high << shift | lent(low), low << shift});

    unsigned i = (na - 1) & ~1U;
    const Limb top = words::load_low(a + i, na - i);
    Limb below = load(a + i - 2);
    Wide remainder{lent(top), top << shift | lent(below)};
    const unsigned nq = na - nb + 1;
    while (i != 0) {
        i -= 2;
        const Limb limb = below << shift;
        below = i != 0 ? load(a + i - 2) : 0;
        const Limb digit = divisor.divide(remainder, limb | lent(below));
        if (i + 2 <= nq)
            words::store(m_words + i, digit);
        else if (i < nq)
            m_words[i] = static_cast<Word>(digit);
    }
    words::clear(m_words + nq, m_size - nq);
    if (r != nullptr) {
        words::store(r->m_words,
                     remainder.low >> shift | remainder.high << 1 << (63 - shift));
        if (nb == 4)
            words::store(r->m_words + 2, remainder.high >> shift);
        else
            r->m_words[2] = static_cast<Word>(remainder.high >> shift);
        words::clear(r->m_words + nb, r->m_size - nb);
    }
}

void big_uint::divide_long(const Word* a, unsigned na, const Word* b, unsigned nb,
                           big_uint* r)
{
    // The divisor fills its limbs to the top bit; the dividend has a top limb below 2^63.
    const auto bits = [](const Word* words, unsigned n) {
        return 32 * n - static_cast<unsigned>(std::countl_zero(words[n - 1]));
    };
    const unsigned nv = (nb + 1) / 2;
    const unsigned shift = 64 * nv - bits(b, nb);
    const unsigned nu = (bits(a, na) + shift) / 64 + 1;
    words::Scratch scratch(2 * (nu + nv));
    Word* const u = scratch.get();
    Word* const v = u + 2 * nu;
    words::normalise(u, nu, a, na, shift, words::ALL_ONES);
    words::normalise(v, nv, b, nb, shift, 0);
    words::divide_normalised(u, nu, v, nv);

    assign(u + 2 * nv, std::min(na - nb + 1, 2 * (nu - nv)));
    if (r != nullptr) {
        words::store_remainder(r->m_words, nb, u, shift);
        words::clear(r->m_words + nb, r->m_size - nb);
    }
}

}  // namespace kiv
