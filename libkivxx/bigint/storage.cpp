// big_uint: storage, copies and moves.

#include <stdexcept>
#include <utility>

#include <kiv/big_uint.h>

#include "bigint/words.h"

namespace kiv {

namespace {

std::uint32_t* new_block(unsigned words)
{
    return new std::uint32_t[words];
}

}  // namespace

// --- Storage ---------------------------------------------------------------------------

void big_uint::alloc(unsigned size, unsigned capacity)
{
    if (capacity > max_size())
        throw std::length_error("big_uint: size > max_size()");
    if (capacity <= MIN_RESERVED) {
        m_words = m_local;
        m_reserved = MIN_RESERVED;
    } else {
        m_words = new_block(capacity);
        m_reserved = static_cast<std::uint16_t>(capacity);
    }
    m_size = static_cast<std::uint16_t>(size);
}

std::uint32_t* big_uint::detach() noexcept
{
    std::uint32_t* const words = m_words;
    m_words = m_local;
    m_reserved = MIN_RESERVED;
    m_size = 1;
    return words;
}

void big_uint::grow(unsigned capacity, unsigned kept)
{
    if (capacity > max_size())
        throw std::length_error("big_uint::max_size() exceeded");
    std::uint32_t* const words = new_block(capacity);
    words::copy(m_words, kept, words);
    destroy();
    m_words = words;
    m_reserved = static_cast<std::uint16_t>(capacity);
}

void big_uint::reserve(unsigned n)
{
    if (n > m_reserved)
        grow(n, m_size);
}

std::uint32_t* big_uint::set_size(unsigned n)
{
    if (n == 0)
        throw std::invalid_argument("big_uint::set_size: new size must not be zero");
    reserve(n);
    if (n > m_size)
        words::clear(m_words + m_size, n - m_size);
    m_size = static_cast<std::uint16_t>(n);
    return m_words;
}

void big_uint::prepend(unsigned word)
{
    reserve(m_size + 1U);
    m_words[m_size++] = word;
}

void big_uint::trim() noexcept
{
    m_size = static_cast<std::uint16_t>(words::significant(m_words, m_size));
}

// --- Construction ----------------------------------------------------------------------

big_uint::big_uint(std::uint64_t value, int) noexcept : big_uint()
{
    m_local[0] = static_cast<std::uint32_t>(value);
    m_local[1] = static_cast<std::uint32_t>(value >> 32);
    m_size = m_local[1] != 0 ? 2 : 1;
}

big_uint::big_uint(std::initializer_list<unsigned> words)
{
    if (words.size() == 0)
        throw std::invalid_argument("big_uint: no words");
    if (words.size() > max_size())
        throw std::length_error("big_uint: size > max_size()");
    const auto size = static_cast<unsigned>(words.size());
    alloc(size, size);
    words::copy(words.begin(), size, m_words);
}

void big_uint::refuse_negative()
{
    throw std::invalid_argument("big_uint: negative value");
}

big_uint big_uint::make_uninitialized(unsigned size)
{
    return make_uninitialized(size, size);
}

big_uint big_uint::make_uninitialized(unsigned size, unsigned capacity)
{
    if (size == 0)
        throw std::invalid_argument("big_uint::make_uninitialized: size == 0");
    if (capacity < size)
        throw std::invalid_argument("big_uint::make_uninitialized: capacity < size");
    return big_uint(noinit_t(), size, capacity);
}

// --- Copies and moves ------------------------------------------------------------------

big_uint::big_uint(const big_uint& other)
{
    alloc(other.m_size, other.m_size);
    words::copy(other.m_words, m_size, m_words);
}

big_uint::big_uint(big_uint&& other) noexcept
    : m_reserved(other.m_reserved), m_size(other.m_size)
{
    if (other.is_local()) {
        m_words = m_local;
        words::copy(other.m_words, m_size, m_words);
    } else {
        m_words = other.detach();
    }
}

big_uint& big_uint::operator=(const big_uint& other)
{
    if (this == &other)
        return *this;
    if (other.m_size > m_reserved)
        grow(other.m_size, 0);
    words::copy(other.m_words, other.m_size, m_words);
    m_size = other.m_size;
    return *this;
}

big_uint& big_uint::operator=(big_uint&& other) noexcept
{
    if (this == &other)
        return *this;
    if (other.is_local()) {
        words::copy(other.m_words, other.m_size, m_words);
        m_size = other.m_size;
    } else if (is_local()) {
        m_reserved = other.m_reserved;
        m_size = other.m_size;
        m_words = other.detach();
    } else {
        swap(other);
    }
    return *this;
}

void big_uint::swap(big_uint& other) noexcept
{
    if (this == &other)
        return;
    if (is_local() && other.is_local()) {
        const unsigned n = m_size > other.m_size ? m_size : other.m_size;
        for (unsigned i = 0; i < n; ++i)
            std::swap(m_local[i], other.m_local[i]);
    } else if (!is_local() && !other.is_local()) {
        std::swap(m_words, other.m_words);
    } else {
        big_uint& local = is_local() ? *this : other;
        big_uint& heap = is_local() ? other : *this;
        words::copy(local.m_local, local.m_size, heap.m_local);
        local.m_words = heap.m_words;
        heap.m_words = heap.m_local;
    }
    std::swap(m_reserved, other.m_reserved);
    std::swap(m_size, other.m_size);
}

}  // namespace kiv
