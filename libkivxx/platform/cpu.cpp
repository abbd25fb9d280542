#include "platform/cpu.h"

#if defined(__x86_64__)
    #include <cpuid.h>
#endif

namespace kiv::platform {

bool cpu_has_avx512_vbmi2() noexcept
{
#if defined(__x86_64__)
    // May be asked before the runtime's own constructors have run.
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi") &&
           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
#else
    return false;
#endif
}

bool cpu_has_avx2() noexcept
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

bool cpu_has_adx() noexcept
{
#if defined(__x86_64__)
    // clang++'s __builtin_cpu_supports does not know ADX.
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_BMI2) != 0 &&
           (b & bit_ADX) != 0;
#else
    return false;
#endif
}

bool cpu_has_avx512_ifma() noexcept
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512ifma");
#else
    return false;
#endif
}

}  // namespace kiv::platform
