// No user-ink palette is held yet: every reference is unresolved, and a
// model-22 colour converts to the failure form. The palette catalogue, which
// keeps that palette, answers here once it exists.
#include "colour/user_inks.h"

namespace fancy {

bool UserInkEntry(uint32_t, CLRColor*) { return false; }

}  // namespace fancy
