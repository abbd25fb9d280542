// platform/cpu.h - what the processor can do.

#ifndef KIV_PLATFORM_CPU_H
#define KIV_PLATFORM_CPU_H

namespace kiv::platform {

// Each is true only if the system saves the registers, too.

// AVX-512 with the instructions that permute and compress bytes (F, BW, DQ,
// VL, VBMI and VBMI2, with BMI and BMI2).
bool cpu_has_avx512_vbmi2() noexcept;

bool cpu_has_avx2() noexcept;

// MULX of BMI2, and ADX.
bool cpu_has_adx() noexcept;

bool cpu_has_avx512_ifma() noexcept;

}  // namespace kiv::platform

#endif
