#include <algorithm>
#include <cstring>

#include <kiv/buffer.h>

namespace kiv {

BufferOverflowError::BufferOverflowError() : std::logic_error("buffer overflow") {}
BufferOverflowError::BufferOverflowError(const BufferOverflowError&) noexcept = default;
BufferOverflowError& BufferOverflowError::operator=(const BufferOverflowError&) noexcept =
    default;
BufferOverflowError::~BufferOverflowError() = default;

BufferUnderflowError::BufferUnderflowError() : std::logic_error("buffer underflow") {}
BufferUnderflowError::BufferUnderflowError(const BufferUnderflowError&) noexcept =
    default;
BufferUnderflowError& BufferUnderflowError::operator=(
    const BufferUnderflowError&) noexcept = default;
BufferUnderflowError::~BufferUnderflowError() = default;

// --- BufferBase ----------------------------------------------------------------

BufferBase::BufferBase(std::size_t position, std::size_t limit, std::size_t capacity)
{
    init(position, limit, capacity);
}

BufferBase::~BufferBase() = default;

void BufferBase::init(std::size_t position, std::size_t limit, std::size_t capacity)
{
    if (position > limit)
        throw std::invalid_argument("position > limit");
    if (limit > capacity)
        throw std::invalid_argument("limit > capacity");
    m_position = position;
    m_limit = limit;
    m_capacity = capacity;
}

BufferBase& BufferBase::limit(std::size_t n)
{
    if (n > m_capacity)
        throw std::invalid_argument("new_limit > capacity()");
    m_limit = n;
    m_position = std::min(m_position, n);
    return *this;
}

std::size_t BufferBase::check_index(std::size_t index, std::size_t n) const
{
    if (index >= m_limit || m_limit - index < n)
        throw std::out_of_range("index + num_bytes > limit()");
    return index;
}

std::size_t BufferBase::next_get_index(std::size_t n)
{
    while (remaining() < n)
        underflow();
    const std::size_t index = m_position;
    m_position += n;
    return index;
}

std::size_t BufferBase::next_put_index(std::size_t n)
{
    while (remaining() < n)
        overflow();
    const std::size_t index = m_position;
    m_position += n;
    return index;
}

void BufferBase::underflow()
{
    throw BufferUnderflowError();
}

void BufferBase::overflow()
{
    throw BufferOverflowError();
}

// --- BasicBuffer ---------------------------------------------------------------

template <class T>
void BasicBuffer<T>::init(T* elements, std::size_t position, std::size_t limit,
                          std::size_t capacity)
{
    BufferBase::init(position, limit, capacity);
    m_data = elements;
}

template <class T>
T BasicBuffer<T>::get()
{
    const std::size_t from = next_get_index(1);  // the hook may change the array
    return m_data[from];
}

template <class T>
Buffer<const T>& BasicBuffer<T>::get(T* dst, std::size_t n)
{
    const std::size_t from = next_get_index(n);
    if (n != 0)
        std::memmove(dst, m_data + from, n * sizeof(T));
    return static_cast<Buffer<const T>&>(*this);
}

template <class T>
void BasicBuffer<T>::put(T value)
{
    const std::size_t to = next_put_index(1);
    m_data[to] = value;
}

template <class T>
void BasicBuffer<T>::put(std::size_t index, T value)
{
    m_data[check_index(index, 1)] = value;
}

template <class T>
void BasicBuffer<T>::put(const T* src, std::size_t n)
{
    const std::size_t to = next_put_index(n);
    if (n != 0)
        std::memmove(m_data + to, src, n * sizeof(T));
}

template <class T>
void BasicBuffer<T>::put(Buffer<const T>& src, std::size_t n)
{
    const std::size_t count = std::min(n, src.remaining());
    const std::size_t to = next_put_index(count);
    try {
        src.get(m_data + to, count);
    } catch (...) {
        position(std::min(to, limit()));  // the source's hook may lower the limit
        throw;
    }
}

template <class T>
void BasicBuffer<T>::compact()
{
    const std::size_t n = remaining();
    if (n != 0)
        std::memmove(m_data, m_data + position(), n * sizeof(T));
    BufferBase::init(n, capacity(), capacity());
}

template class BasicBuffer<unsigned char>;
template class BasicBuffer<char16>;
template class Buffer<const unsigned char>;
template class Buffer<const char16>;
template class Buffer<unsigned char>;
template class Buffer<char16>;

}  // namespace kiv
