// The choice of the inner loops.

#include "charset/kernels.h"

namespace kiv {

const Kernels& kernels() noexcept
{
    return portable_kernels;
}

}  // namespace kiv
