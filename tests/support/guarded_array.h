// support/guarded_array.h - arrays at the edges of inaccessible memory, so that a step
// outside crashes in every build. Sanitizers miss the masked loads and gathers of
// wide kernels.

#ifndef SUPPORT_GUARDED_ARRAY_H
#define SUPPORT_GUARDED_ARRAY_H

#include <sys/mman.h>

#include <cstddef>
#include <cstring>
#include <new>

namespace support {

// The array begins right behind an inaccessible page or ends right before one.
enum class Edge { START, END };

// One array at a time, in memory that is mapped once: to map it takes long.
template <class T>
class GuardedArray {
public:
    GuardedArray()
    {
        if (m_all == MAP_FAILED || mprotect(begin(), SIZE, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
    }
    ~GuardedArray() { munmap(m_all, SIZE + 2 * GUARD); }
    GuardedArray(const GuardedArray&) = delete;

    // n elements of a pattern, in the place of those before.
    T* make(std::size_t n, Edge edge)
    {
        const std::size_t size = n * sizeof(T);
        if (size > SIZE)
            throw std::bad_alloc();
        void* const first = begin() + (edge == Edge::END ? SIZE - size : 0);
        return static_cast<T*>(std::memset(first, PATTERN, size));
    }

    // Whether these elements still have the pattern.
    static bool untouched(const T* elements, std::size_t n)
    {
        const auto* first = reinterpret_cast<const unsigned char*>(elements);
        return n == 0 || (*first == PATTERN &&
                          std::memcmp(first, first + 1, n * sizeof(T) - 1) == 0);
    }

private:
    static constexpr unsigned char PATTERN = 0xA5;
    static constexpr std::size_t SIZE = 1 << 20, GUARD = 1 << 16;  // whole pages

    char* begin() { return static_cast<char*>(m_all) + GUARD; }

    void* const m_all =
        mmap(nullptr, SIZE + 2 * GUARD, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
};

}  // namespace support

#endif
