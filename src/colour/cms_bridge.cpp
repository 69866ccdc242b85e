// The bridge without a colour-management library: no system profile is ever
// loaded, so every operation reports that there is no transform and the
// conversions run their arithmetic. A build with profile support replaces
// these bodies; the contract in cms_bridge.h stays.
#include "colour/cms_bridge.h"

namespace fancy {

int CmsToDeviceFromRGB(const CmsMapping*, const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t,
                       int32_t, int32_t) {
  return 0;
}

int CmsToDeviceFromLab(const CmsMapping*, const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t,
                       int32_t, int32_t) {
  return 0;
}

int CmsFromCMYK(const CmsMapping*, int, const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t, int32_t,
                int32_t) {
  return 0;
}

int CmsLabToRGB(const CmsMapping*, const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t, int32_t,
                int32_t) {
  return 0;
}

int CmsRGBToLab(const CmsMapping*, const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t, int32_t,
                int32_t) {
  return 0;
}

}  // namespace fancy
