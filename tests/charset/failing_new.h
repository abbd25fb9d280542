// The allocation functions of the test program: they count, and fail when told to.
// A translation unit of their own keeps compilers from pairing malloc with delete.

#ifndef KIV_TESTS_CHARSET_FAILING_NEW_H
#define KIV_TESTS_CHARSET_FAILING_NEW_H

namespace failing_new {

// False where a sanitizer keeps the allocation functions to itself.
bool works() noexcept;

// Lets n more allocations succeed, all after them fail.
void fail_after(long n) noexcept;
void never_fail() noexcept;

// Allocations that have not been freed.
long live() noexcept;

}  // namespace failing_new

#endif
