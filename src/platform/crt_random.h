// The C runtime's random generator of the platform the module was made for,
// so that a seed gives the same picture on every system. RAND_MAX is 32767.
#pragma once

#include <cstdint>

namespace fancy {

constexpr int kCrtRandMax = 32767;

void CrtSrand(uint32_t seed);
int CrtRand();  // 0..32767

}  // namespace fancy
