// A translation unit of its own keeps compilers from pairing malloc with delete.

#include "support/failing_new.h"

#include <cstdlib>
#include <new>

// The thread sanitizer has functions of its own and suffers no others.
#if defined(__SANITIZE_THREAD__)
    #define KIV_TEST_THREAD_SANITIZER
#elif defined(__has_feature)
    #if __has_feature(thread_sanitizer)
        #define KIV_TEST_THREAD_SANITIZER
    #endif
#endif

#ifndef KIV_TEST_THREAD_SANITIZER

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (failing_new::remaining == 0)
        return nullptr;
    if (failing_new::remaining > 0)
        --failing_new::remaining;
    void* const p = std::malloc(size != 0 ? size : 1);
    failing_new::live += p != nullptr;
    return p;
}

void* operator new(std::size_t size)
{
    if (void* const p = operator new(size, std::nothrow))
        return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
    failing_new::live -= p != nullptr;
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    operator delete(p);
}

// By default these call the ones above, but not under every sanitizer.

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete[](void* p) noexcept
{
    operator delete(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    operator delete(p);
}

#endif
