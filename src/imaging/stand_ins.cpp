// Stand-ins for two entry points that other parts of the imaging layer own,
// so that the image model links on its own. Remove each when its owner lands:
// CompositeImage comes with the compositor, PaletteLookupFree with the
// palette lookup of image conversion.
#include <cstdlib>

#include "imaging/image.h"

namespace fancy {

struct DrawContext;

// Until the compositor exists, a masked or non-Normal write cannot be done:
// it fails without touching the destination.
int CompositeImage(DrawContext*, Image*, int32_t, int32_t, int32_t, int32_t, const Rect*, Image*,
                   int32_t, int32_t, int32_t, int32_t, const Rect*, uint32_t) {
  return 0;
}

// Nothing builds a lookup yet, so a palette never holds one.
void PaletteLookupFree(PaletteLookup* lookup) { std::free(lookup); }

}  // namespace fancy
