// kiv/buffer.h - cursors over caller-owned arrays, the input and output of
// every coder.
//
// A buffer has a position (the next element), a limit (the first element that
// must not be touched) and a capacity, 0 <= position <= limit <= capacity. It
// never owns, resizes or frees its array. Fill it, flip it, drain it, compact
// it:
//
//     unsigned char bytes[4096];
//     kiv::Buffer<unsigned char> buffer(bytes, sizeof bytes);
//     buffer.put(data, n).flip();
//     ... a coder reads from it ...
//     buffer.compact();                // what was not read moves to the front
//
// A read that needs more than remains calls underflow(), a write overflow(),
// again and again until it suffices: a derived buffer may refill or drain
// itself there. The base hooks throw BufferUnderflowError and
// BufferOverflowError; nothing has been moved by then.
//
// There are two element types, unsigned char and char16. A buffer may not be
// used by two threads at once.

#ifndef KIV_BUFFER_H
#define KIV_BUFFER_H

#include <concepts>
#include <cstddef>
#include <stdexcept>
#include <type_traits>

#include <kiv/char16.h>
#include <kiv/export.h>

namespace kiv {

class KIV_API BufferOverflowError : public std::logic_error {
public:
    BufferOverflowError();  // "buffer overflow"
    BufferOverflowError(const BufferOverflowError&) noexcept;
    BufferOverflowError& operator=(const BufferOverflowError&) noexcept;
    ~BufferOverflowError() override;
};

class KIV_API BufferUnderflowError : public std::logic_error {
public:
    BufferUnderflowError();  // "buffer underflow"
    BufferUnderflowError(const BufferUnderflowError&) noexcept;
    BufferUnderflowError& operator=(const BufferUnderflowError&) noexcept;
    ~BufferUnderflowError() override;
};

// The three indices, counted in elements.
class KIV_API BufferBase {
public:
    virtual ~BufferBase();

    std::size_t capacity() const noexcept { return m_capacity; }
    std::size_t limit() const noexcept { return m_limit; }
    std::size_t position() const noexcept { return m_position; }
    std::size_t remaining() const noexcept { return m_limit - m_position; }
    bool hasRemaining() const noexcept { return m_position < m_limit; }

    // Throws std::invalid_argument if n > capacity(). A position beyond the
    // new limit moves to it.
    BufferBase& limit(std::size_t n);

    // Throws std::invalid_argument if n > limit().
    BufferBase& position(std::size_t n)
    {
        if (n > m_limit)
            throw std::invalid_argument("new_position > limit()");
        m_position = n;
        return *this;
    }

    // Makes what was written readable: the limit goes to the position, the
    // position to 0.
    BufferBase& flip() noexcept
    {
        m_limit = m_position;
        m_position = 0;
        return *this;
    }
    BufferBase& clear() noexcept
    {
        m_limit = m_capacity;
        m_position = 0;
        return *this;
    }
    BufferBase& rewind() noexcept
    {
        m_position = 0;
        return *this;
    }

protected:
    // Throws std::invalid_argument unless position <= limit <= capacity.
    BufferBase(std::size_t position, std::size_t limit, std::size_t capacity);
    BufferBase(const BufferBase&) noexcept = default;
    BufferBase& operator=(const BufferBase&) noexcept = default;
    void init(std::size_t position, std::size_t limit, std::size_t capacity);

    // Returns index; throws std::out_of_range unless n elements lie between it
    // and the limit and it is itself below the limit.
    std::size_t check_index(std::size_t index, std::size_t n) const;

    // Returns the position and moves it on by n, calling the hook while fewer
    // than n elements remain.
    std::size_t next_get_index(std::size_t n);
    std::size_t next_put_index(std::size_t n);

    virtual void underflow();
    virtual void overflow();

private:
    std::size_t m_position;
    std::size_t m_limit;
    std::size_t m_capacity;
};

template <class T>
class Buffer;

// The storage and the element operations; the writing ones are protected.
template <class T>
class KIV_API BasicBuffer : public BufferBase {
    static_assert(std::is_same_v<T, unsigned char> || std::is_same_v<T, char16>);

public:
    using value_type = T;

    T get();

    // Element at index; the position does not move. Throws std::out_of_range
    // unless index < limit().
    T get(std::size_t index) const { return m_data[check_index(index, 1)]; }

    // Moves n elements to dst, which may overlap them.
    Buffer<const T>& get(T* dst, std::size_t n);

protected:
    BasicBuffer(T* elements, std::size_t capacity)
        : BasicBuffer(elements, 0, capacity, capacity)
    {
    }
    BasicBuffer(T* elements, std::size_t position, std::size_t limit,
                std::size_t capacity)
        : BufferBase(position, limit, capacity), m_data(elements)
    {
    }
    BasicBuffer(const BasicBuffer&) noexcept = default;  // shares the array
    BasicBuffer& operator=(const BasicBuffer&) noexcept = default;

    using BufferBase::init;
    void init(T* elements, std::size_t capacity)
    {
        init(elements, 0, capacity, capacity);
    }
    void init(T* elements, std::size_t position, std::size_t limit, std::size_t capacity);

    // Also for a read-only buffer that refills itself; Buffer<T> makes them public.
    void put(T value);
    void put(std::size_t index, T value);
    void put(const T* src, std::size_t n);

    // Transfers min(n, src.remaining()) elements. If the source throws, this
    // buffer's position is put back.
    void put(Buffer<const T>& src, std::size_t n = static_cast<std::size_t>(-1));

    // Moves what lies between position and limit to the front and makes the
    // rest writable.
    void compact();

    T* data() const noexcept { return m_data; }

private:
    T* m_data;
};

// A read-only buffer: position 0, limit and capacity as given.
template <class T>
class KIV_API Buffer<const T> : public BasicBuffer<T> {
public:
    // The elements are only ever written through Buffer<T>.
    Buffer(const T* elements, std::size_t size)
        : BasicBuffer<T>(const_cast<T*>(elements), size)
    {
    }

    const T* data() const noexcept { return BasicBuffer<T>::data(); }
};

// A writable buffer, which can also be read.
template <class T>
class KIV_API Buffer : public Buffer<const T> {
public:
    Buffer(T* elements, std::size_t capacity) : Buffer<const T>(elements, capacity) {}

    using BasicBuffer<T>::data;

    Buffer& put(T value)
    {
        BasicBuffer<T>::put(value);
        return *this;
    }
    Buffer& put(std::size_t index, T value)
    {
        BasicBuffer<T>::put(index, value);
        return *this;
    }
    Buffer& put(const T* src, std::size_t n)
    {
        BasicBuffer<T>::put(src, n);
        return *this;
    }
    Buffer& put(Buffer<const T>& src, std::size_t n = static_cast<std::size_t>(-1))
    {
        BasicBuffer<T>::put(src, n);
        return *this;
    }
    Buffer& compact()
    {
        BasicBuffer<T>::compact();
        return *this;
    }

    // A literal index: without this, 0 is a null pointer as well.
    template <std::integral Index, std::convertible_to<T> Value>
    Buffer& put(Index index, Value value)
    {
        const auto at = static_cast<std::size_t>(index);
        if constexpr (std::is_same_v<T, char16> && std::integral<Value>)
            return put(at, T(static_cast<char16_t>(value)));
        else
            return put(at, static_cast<T>(value));
    }
};

extern template class KIV_API BasicBuffer<unsigned char>;
extern template class KIV_API BasicBuffer<char16>;
extern template class KIV_API Buffer<const unsigned char>;
extern template class KIV_API Buffer<const char16>;
extern template class KIV_API Buffer<unsigned char>;
extern template class KIV_API Buffer<char16>;

}  // namespace kiv

#endif
