// The two headers at the start of a BMP file: the 14-byte file header and
// the info header after it. Readers differ in what they accept and check it
// themselves; the writers share AppendBmpHeaders.
#pragma once

#include <cstdint>
#include <vector>

namespace fancy {

constexpr uint16_t kBmpType = 19778;  // "BM"
constexpr uint32_t kBmpFileHeaderBytes = 14;
constexpr uint32_t kBmpCoreHeaderBytes = 12;  // the short info header
constexpr uint32_t kBmpInfoHeaderBytes = 40;

// The BMP headers as read: the file header, then the info header widened
// from the 12-byte core form when the file has that. Every field starts at 0.
struct BmpHeader {
  uint16_t type = 0;        // 19778, "BM"
  uint32_t fileSize = 0;
  uint16_t reserved1 = 0;
  uint16_t reserved2 = 0;
  uint32_t offBits = 0;     // where the pixels begin
  uint32_t headerSize = 0;  // 12 for the core header, else read as 40 bytes
  int32_t width = 0;
  int32_t height = 0;
  uint16_t planes = 0;
  uint16_t bitCount = 0;
  uint32_t compression = 0;
  uint32_t imageSize = 0;
  int32_t xPelsPerMeter = 0;
  int32_t yPelsPerMeter = 0;
  uint32_t colorsUsed = 0;
  uint32_t colorsImportant = 0;
};

// Bytes of one stored row: width pixels of bitCount bits, padded to a
// multiple of four bytes.
constexpr int64_t BmpRowBytes(int32_t bitCount, int64_t width) {
  return (width * bitCount + 31) / 32 * 4;
}

// Appends the file header and a 40-byte info header, every field as the
// header holds it (headerSize included): 54 bytes. Writers name the fields
// they set; those left out of the record are written as 0.
void AppendBmpHeaders(const BmpHeader& header, std::vector<uint8_t>& out);

}  // namespace fancy
