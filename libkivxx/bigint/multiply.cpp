// big_uint: multiplication.

#include <stdexcept>
#include <utility>

#include <kiv/big_uint.h>

#include "bigint/kernels.h"
#include "bigint/words.h"

namespace kiv {

// --- Arrays ----------------------------------------------------------------------------

namespace words {

namespace {

// The odd top word of a row. The carry is that of the limbs below.
Limb top_of_row(Word& r, Wide product) noexcept
{
    r = static_cast<Word>(product.low);
    return product.high << 32 | product.low >> 32;
}

// r += a * w, n words. What is above them.
Limb add_product(const Kernels& kernels, Word* r, const Word* a, unsigned n,
                 Limb w) noexcept
{
    const Limb carry = kernels.add_product(r, a, n / 2, w);
    if (n % 2 == 0)
        return carry;
    return top_of_row(r[n - 1], multiply_add(a[n - 1], w, r[n - 1], carry));
}

}  // namespace

Limb multiply(Word* r, const Word* a, unsigned n, Limb w, Limb carry) noexcept
{
    carry = n < 8 ? multiply_limbs_portable(r, a, n / 2, w, carry)
                  : kernels().multiply(r, a, n / 2, w, carry);
    if (n % 2 == 0)
        return carry;
    return top_of_row(r[n - 1], multiply_add(a[n - 1], w, carry));
}

namespace {

// nb <= na <= 2 * N: a and the part of the product that is under way are in registers.
template <unsigned N>
void multiply_small(Word* r, const Word* a, unsigned na, const Word* b,
                    unsigned nb) noexcept
{
    Limb factor[N];
    for (unsigned i = 0; i + 1 < N; ++i)
        factor[i] = load(a + 2 * i);
    factor[N - 1] = load_low(a + 2 * N - 2, na - (2 * N - 2));

    Limb row[N + 1] = {};
    const auto add_row = [&](Limb w) {
        Limb carry = 0;
        for (unsigned i = 0; i < N; ++i) {
            const Wide product = multiply_add(factor[i], w, row[i], carry);
            row[i] = product.low;
            carry = product.high;
        }
        row[N] = carry;
    };
    for (; nb >= 2; nb -= 2, b += 2, r += 2) {
        add_row(load(b));
        store(r, row[0]);
        for (unsigned i = 0; i < N; ++i)
            row[i] = row[i + 1];
    }
    row[N] = 0;
    unsigned rest = na;  // words of the product
    if (nb != 0) {
        add_row(b[0]);
        ++rest;
    }
    for (unsigned i = 0; i <= N; ++i) {
        if (2 * i + 2 <= rest)
            store(r + 2 * i, row[i]);
        else if (2 * i < rest)
            r[2 * i] = static_cast<Word>(row[i]);
    }
}

void multiply_rows(Word* r, const Word* a, unsigned na, const Word* b,
                   unsigned nb) noexcept
{
    if (nb == 1) {
        r[na] = static_cast<Word>(multiply(r, a, na, b[0], 0));
        return;
    }
    store(r + na, multiply(r, a, na, load(b), 0));
    const Kernels& set = kernels();
    unsigned j = 2;
    for (; j + 2 <= nb; j += 2)
        store(r + j + na, add_product(set, r + j, a, na, load(b + j)));
    if (j < nb)
        r[j + na] = static_cast<Word>(add_product(set, r + j, a, na, b[j]));
}

}  // namespace

void multiply(Word* r, const Word* a, unsigned na, const Word* b, unsigned nb) noexcept
{
    if (na < nb) {
        std::swap(a, b);
        std::swap(na, nb);
    }
    switch ((na + 1) / 2) {
    case 1:
        return multiply_small<1>(r, a, na, b, nb);
    case 2:
        return multiply_small<2>(r, a, na, b, nb);
    case 3:
        return multiply_small<3>(r, a, na, b, nb);
    case 4:
        return multiply_small<4>(r, a, na, b, nb);
    default:
        return multiply_rows(r, a, na, b, nb);
    }
}

}  // namespace words

// --- big_uint --------------------------------------------------------------------------

namespace {

// The carry is below w, but the odd top word gives it whole.
unsigned multiply_in_place(std::uint32_t* words, unsigned n, unsigned w) noexcept
{
    return static_cast<unsigned>(words::multiply(words, words, n, w, 0));
}

}  // namespace

unsigned big_uint::multiply(unsigned w) noexcept
{
    return multiply_in_place(m_words, m_size, w);
}

unsigned big_uint::multiply_by_10() noexcept
{
    return multiply_in_place(m_words, m_size, 10);
}

unsigned big_uint::multiply_by_100() noexcept
{
    return multiply_in_place(m_words, m_size, 100);
}

void big_uint::multiply(const big_uint& a, const big_uint& b)
{
    const unsigned n = unsigned{a.m_size} + b.m_size;
    if (m_size < n)
        throw std::invalid_argument("big_uint::multiply: product too short");
    if (this == &a || this == &b)
        throw std::invalid_argument("big_uint::multiply: product is an operand");
    words::multiply(m_words, a.m_words, a.m_size, b.m_words, b.m_size);
    words::clear(m_words + n, m_size - n);
}

}  // namespace kiv
