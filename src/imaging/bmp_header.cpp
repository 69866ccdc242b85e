#include "imaging/bmp_header.h"

#include "platform/byte_order.h"

namespace fancy {

void AppendBmpHeaders(const BmpHeader& h, std::vector<uint8_t>& out) {
  AppendLE16(out, h.type);
  AppendLE32(out, h.fileSize);
  AppendLE16(out, h.reserved1);
  AppendLE16(out, h.reserved2);
  AppendLE32(out, h.offBits);
  AppendLE32(out, h.headerSize);
  AppendLE32(out, static_cast<uint32_t>(h.width));
  AppendLE32(out, static_cast<uint32_t>(h.height));
  AppendLE16(out, h.planes);
  AppendLE16(out, h.bitCount);
  AppendLE32(out, h.compression);
  AppendLE32(out, h.imageSize);
  AppendLE32(out, static_cast<uint32_t>(h.xPelsPerMeter));
  AppendLE32(out, static_cast<uint32_t>(h.yPelsPerMeter));
  AppendLE32(out, h.colorsUsed);
  AppendLE32(out, h.colorsImportant);
}

}  // namespace fancy
