// support/guarded_array.h - arrays at the edge of inaccessible memory, so that a step
// outside crashes in every build. Sanitizers miss the masked loads and gathers of
// wide kernels.

#ifndef SUPPORT_GUARDED_ARRAY_H
#define SUPPORT_GUARDED_ARRAY_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <new>

namespace support {

// The array begins right behind an inaccessible page or ends right before one.
enum class Edge { START, END };

// One array at a time. The memory is kept for the next one: to map it takes long.
template <class T>
class GuardedArray {
public:
    GuardedArray() { map(1); }
    ~GuardedArray() { unmap(); }
    GuardedArray(const GuardedArray&) = delete;
    GuardedArray& operator=(const GuardedArray&) = delete;

    // n elements of a pattern, in the place of those before.
    T* make(std::size_t n, Edge edge)
    {
        const std::size_t size = n * sizeof(T);
        if (size > m_size) {
            unmap();
            map(size);
        }
        char* const first = m_memory + (edge == Edge::END ? m_size - size : 0);
        std::memset(first, PATTERN, size);
        return reinterpret_cast<T*>(first);
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
    const std::size_t m_page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));

    void map(std::size_t size)
    {
        m_size = (size + m_page - 1) / m_page * m_page;
        void* const all = mmap(nullptr, m_size + 2 * m_page, PROT_NONE,
                               MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (all == MAP_FAILED)
            throw std::bad_alloc();
        m_memory = static_cast<char*>(all) + m_page;
        if (mprotect(m_memory, m_size, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
    }
    void unmap() { munmap(m_memory - m_page, m_size + 2 * m_page); }

    char* m_memory;
    std::size_t m_size;
};

}  // namespace support

#endif
