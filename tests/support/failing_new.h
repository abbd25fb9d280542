// The allocation functions of the test program: they count, and fail when told to.

#ifndef KIV_TESTS_SUPPORT_FAILING_NEW_H
#define KIV_TESTS_SUPPORT_FAILING_NEW_H

#include <atomic>

namespace failing_new {

// Allocations that have not been freed. Never 0, but under a sanitizer that keeps
// the allocation functions to itself.
inline std::atomic<long> live{0};

// Allocations that still succeed; negative if all do.
inline std::atomic<long> remaining{-1};

}  // namespace failing_new

#endif
