// Time as the C runtime's time() gives it, in whole seconds. Tests may pin it.
#pragma once

#include <cstdint>

namespace fancy {

int64_t CrtTime();
// Pins CrtTime to a value (for tests); a negative value returns to the clock.
void CrtTimeOverride(int64_t seconds);

}  // namespace fancy
