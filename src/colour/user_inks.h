// The user-ink palette as conversions see it: a model-22 colour names an
// entry of that palette by index.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"

namespace fancy {

// Copies entry index of the user-ink palette into out and returns true, or
// returns false (out untouched) when the palette is not loaded or has no such
// entry.
bool UserInkEntry(uint32_t index, CLRColor* out);

}  // namespace fancy
