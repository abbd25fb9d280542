// big_uint: multiplication.

#include <algorithm>
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
    carry = n <= 8 ? multiply_limbs_portable(r, a, n / 2, w, carry)
                   : kernels().multiply(r, a, n / 2, w, carry);
    if (n % 2 == 0)
        return carry;
    return top_of_row(r[n - 1], multiply_add(a[n - 1], w, carry));
}

namespace {

// nb <= na <= 2 * N: the part of the product that is under way is in registers.
template <unsigned N>
void multiply_small(Word* r, const Word* a, unsigned na, const Word* b,
                    unsigned nb) noexcept
{
    const Limb top = load_low(a + 2 * N - 2, na - (2 * N - 2));
    Limb row[N + 1] = {};
    const auto add_row = [&](Limb w) {
        Limb carry = 0;
        for (unsigned i = 0; i < N; ++i) {
            const Limb factor = i + 1 < N ? load(a + 2 * i) : top;
            const Wide product = multiply_add(factor, w, row[i], carry);
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

// Four limbs by four, by columns: the sums of a column wait for each other less than
// those of a row.
void multiply_four(Word* r, const Word* a, const Word* b) noexcept
{
    Limb low = 0;  // of the column that is under way
    Limb high = 0;
    Limb above = 0;
    const auto add = [&](unsigned i, unsigned j) {
        const Wide product = multiply(load(a + 2 * i), load(b + 2 * j));
        accumulate(product, low, high, above);
    };
    const auto next_column = [&](unsigned column) {
        store(r + 2 * column, low);
        low = high;
        high = above;
        above = 0;
    };
    add(0, 0);
    next_column(0);
    add(0, 1), add(1, 0);
    next_column(1);
    add(0, 2), add(1, 1), add(2, 0);
    next_column(2);
    add(0, 3), add(1, 2), add(2, 1), add(3, 0);
    next_column(3);
    add(1, 3), add(2, 2), add(3, 1);
    next_column(4);
    add(2, 3), add(3, 2);
    next_column(5);
    add(3, 3);
    next_column(6);
    store(r + 14, low);
}

void multiply_rows(const Kernels& set, Word* r, const Word* a, unsigned na, const Word* b,
                   unsigned nb) noexcept
{
    if (nb == 1) {
        r[na] = static_cast<Word>(multiply(r, a, na, b[0], 0));
        return;
    }
    store(r + na, multiply(r, a, na, load(b), 0));
    unsigned j = 2;
    for (; j + 2 <= nb; j += 2)
        store(r + j + na, add_product(set, r + j, a, na, load(b + j)));
    if (j < nb)
        r[j + na] = static_cast<Word>(add_product(set, r + j, a, na, b[j]));
}

// From here on a block pays.
constexpr unsigned MIN_BLOCK_WORDS = 64;

void add_word(Word* r, Word w) noexcept
{
    for (Limb carry = w; carry != 0; ++r) {
        carry += *r;
        *r = static_cast<Word>(carry);
        carry >>= 32;
    }
}

// Schoolbook multiplication with blocks of limbs for digits; then the odd top words.
void multiply_blocks(const Kernels& set, Word* r, const Word* a, unsigned na,
                     const Word* b, unsigned nb) noexcept
{
    const unsigned la = na / 2;
    const unsigned lb = nb / 2;
    if (la <= MAX_BLOCK && lb <= MAX_BLOCK) {
        set.multiply_block(r, a, la, b, lb);
        clear(r + 2 * (la + lb), na % 2 + nb % 2);
    } else {
        clear(r, na + nb);
        Word product[4 * MAX_BLOCK];
        for (unsigned i = 0; i < la; i += MAX_BLOCK) {
            for (unsigned j = 0; j < lb; j += MAX_BLOCK) {
                const unsigned ni = std::min(la - i, MAX_BLOCK);
                const unsigned nj = std::min(lb - j, MAX_BLOCK);
                set.multiply_block(product, a + 2 * i, ni, b + 2 * j, nj);
                Word* const place = r + 2 * (i + j);
                const Limb carry = add_limbs(place, place, product, ni + nj);
                add_word(place + 2 * (ni + nj), static_cast<Word>(carry));
            }
        }
    }
    if (na % 2 != 0) {
        const Limb carry = add_product(set, r + na - 1, b, nb, a[na - 1]);
        r[na + nb - 1] = static_cast<Word>(carry);
    }
    if (nb % 2 != 0) {
        const Limb carry = add_product(set, r + nb - 1, a, 2 * la, b[nb - 1]);
        add_word(r + nb - 1 + 2 * la, static_cast<Word>(carry));
    }
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
        if (na == 8 && nb == 8)
            return multiply_four(r, a, b);
        return multiply_small<4>(r, a, na, b, nb);
    default:
        break;
    }
    const Kernels& set = kernels();
    if (nb >= MIN_BLOCK_WORDS && set.multiply_block != nullptr)
        multiply_blocks(set, r, a, na, b, nb);
    else
        multiply_rows(set, r, a, na, b, nb);
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
    if (a.m_size == 2 && b.m_size == 2) {
        const words::Wide product =
            words::multiply(words::load(a.m_words), words::load(b.m_words));
        words::store(m_words, product.low);
        words::store(m_words + 2, product.high);
    } else {
        words::multiply(m_words, a.m_words, a.m_size, b.m_words, b.m_size);
    }
    words::clear(m_words + n, m_size - n);
}

}  // namespace kiv
