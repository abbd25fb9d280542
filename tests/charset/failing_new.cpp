#include "charset/failing_new.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> remaining{-1};  // negative: never fails
std::atomic<long> live_allocations{0};

[[maybe_unused]] void* allocate(std::size_t size) noexcept
{
    if (remaining.load(std::memory_order_relaxed) == 0)
        return nullptr;
    if (remaining.load(std::memory_order_relaxed) > 0)
        remaining.fetch_sub(1, std::memory_order_relaxed);
    void* const p = std::malloc(size != 0 ? size : 1);
    if (p != nullptr)
        live_allocations.fetch_add(1, std::memory_order_relaxed);
    return p;
}

}  // namespace

// The thread sanitizer has functions of its own and suffers no others.
#if defined(__SANITIZE_THREAD__)
    #define KIV_TEST_THREAD_SANITIZER
#elif defined(__has_feature)
    #if __has_feature(thread_sanitizer)
        #define KIV_TEST_THREAD_SANITIZER
    #endif
#endif

#ifndef KIV_TEST_THREAD_SANITIZER

void* operator new(std::size_t size)
{
    if (void* const p = allocate(size))
        return p;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocate(size);
}

void operator delete(void* p) noexcept
{
    if (p == nullptr)
        return;
    live_allocations.fetch_sub(1, std::memory_order_relaxed);
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    operator delete(p);
}

#endif

namespace failing_new {

bool works() noexcept
{
    return live_allocations != 0;
}

void fail_after(long n) noexcept
{
    remaining = n;
}

void never_fail() noexcept
{
    remaining = -1;
}

long live() noexcept
{
    return live_allocations;
}

}  // namespace failing_new
