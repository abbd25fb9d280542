// The choice of the inner loops.

#include "charset/kernels.h"

namespace kiv {

// SSE2 is part of every x86-64, so nothing has to be asked of the machine.
const Kernels& kernels() noexcept
{
#if defined(__SSE2__)
    return sse2_kernels;
#else
    return portable_kernels;
#endif
}

}  // namespace kiv
