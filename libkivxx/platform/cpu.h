// platform/cpu.h - what the processor can do.

#ifndef KIV_PLATFORM_CPU_H
#define KIV_PLATFORM_CPU_H

namespace kiv::platform {

// AVX-512 with the instructions that permute and compress bytes (F, BW, DQ,
// VL, VBMI and VBMI2, with BMI and BMI2), and a system that saves their registers.
bool cpu_has_avx512_vbmi2() noexcept;

}  // namespace kiv::platform

#endif
