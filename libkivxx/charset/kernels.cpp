// The choice of the inner loops.

#include "charset/kernels.h"

#include <atomic>

#include "charset/table_kernels.h"
#include "platform/cpu.h"

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

constinit const TableKernels portable_table_kernels = {};

namespace {

// Null until first asked for. Threads that ask at once find the same answer.
constinit std::atomic<const TableKernels*> chosen = nullptr;

const TableKernels* choose() noexcept
{
#if defined(__x86_64__)
    if (platform::cpu_has_avx512_vbmi2())
        return &avx512_table_kernels;
    if (platform::cpu_has_avx2())
        return &avx2_table_kernels;
#endif
    return &portable_table_kernels;
}

}  // namespace

const TableKernels& table_kernels() noexcept
{
    const TableKernels* set = chosen.load(std::memory_order_relaxed);
    if (set == nullptr) {
        set = choose();
        chosen.store(set, std::memory_order_relaxed);
    }
    return *set;
}

void use_table_kernels(const TableKernels* set) noexcept
{
    chosen.store(set, std::memory_order_relaxed);
}

}  // namespace kiv
