// BMP files put together byte by byte for the source tests, independently
// of the module's writer: the headers of the format, a palette and padded
// rows, bottom row first.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace fancy::testing {

struct BmpSpec {
  int32_t width = 0;
  int32_t height = 0;
  int32_t bits = 24;             // 1, 4, 8, 24 (others for refusals)
  bool coreHeader = false;       // the 12-byte header with 3-byte palette entries
  uint32_t compression = 0;
  uint32_t colorsUsed = 0;       // written in the long header
  int32_t paletteEntries = -1;   // entries written; -1: 1 << bits for paletted files
  // Palette entries as blue, green, red.
  std::vector<std::array<uint8_t, 3>> palette;
  // One value a pixel, rows top row first: an index for paletted files, or
  // blue | green << 8 | red << 16 for 24 bits.
  std::vector<uint32_t> pixels;
};

inline void Put16(std::string& s, uint32_t v) {
  s.push_back(char(v & 0xFF));
  s.push_back(char((v >> 8) & 0xFF));
}
inline void Put32(std::string& s, uint32_t v) {
  Put16(s, v & 0xFFFF);
  Put16(s, v >> 16);
}

inline int32_t BmpRowBytes(int32_t bits, int32_t width) { return ((bits * width + 31) / 32) * 4; }

inline std::string MakeBmp(const BmpSpec& b) {
  const int32_t entries =
      b.bits > 8 ? 0 : (b.paletteEntries >= 0 ? b.paletteEntries : 1 << b.bits);
  const int32_t entryBytes = b.coreHeader ? 3 : 4;
  const int32_t headerSize = b.coreHeader ? 12 : 40;
  const int32_t offBits = 14 + headerSize + entries * entryBytes;
  const int32_t rowBytes = BmpRowBytes(b.bits, b.width);
  std::string s;
  Put16(s, 19778);
  Put32(s, uint32_t(offBits + rowBytes * b.height));
  Put16(s, 0);
  Put16(s, 0);
  Put32(s, uint32_t(offBits));
  Put32(s, uint32_t(headerSize));
  if (b.coreHeader) {
    Put16(s, uint32_t(b.width));
    Put16(s, uint32_t(b.height));
    Put16(s, 1);
    Put16(s, uint32_t(b.bits));
  } else {
    Put32(s, uint32_t(b.width));
    Put32(s, uint32_t(b.height));
    Put16(s, 1);
    Put16(s, uint32_t(b.bits));
    Put32(s, b.compression);
    Put32(s, uint32_t(rowBytes * b.height));
    Put32(s, 2835);  // 72 dots an inch
    Put32(s, 2835);
    Put32(s, b.colorsUsed);
    Put32(s, 0);
  }
  for (int32_t i = 0; i < entries; ++i) {
    std::array<uint8_t, 3> c = i < int32_t(b.palette.size()) ? b.palette[size_t(i)]
                                                              : std::array<uint8_t, 3>{0, 0, 0};
    s.push_back(char(c[0]));
    s.push_back(char(c[1]));
    s.push_back(char(c[2]));
    if (!b.coreHeader) s.push_back(char(0x5A));  // the dropped fourth byte
  }
  for (int32_t r = b.height - 1; r >= 0; --r) {
    std::string row(size_t(rowBytes), '\0');
    for (int32_t x = 0; x < b.width; ++x) {
      const uint32_t v = b.pixels[size_t(r) * size_t(b.width) + size_t(x)];
      switch (b.bits) {
        case 24:
          row[size_t(x) * 3] = char(v & 0xFF);
          row[size_t(x) * 3 + 1] = char((v >> 8) & 0xFF);
          row[size_t(x) * 3 + 2] = char((v >> 16) & 0xFF);
          break;
        case 8: row[size_t(x)] = char(v); break;
        case 4: row[size_t(x / 2)] = char(row[size_t(x / 2)] | (x & 1 ? v : v << 4)); break;
        case 1:
          if (v) row[size_t(x / 8)] = char(row[size_t(x / 8)] | (0x80 >> (x & 7)));
          break;
        default: break;
      }
    }
    s += row;
  }
  return s;
}

}  // namespace fancy::testing
