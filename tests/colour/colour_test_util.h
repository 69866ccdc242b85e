// Helpers shared by the colour tests.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "colour/clr_color.h"
#include "colour/hex_table.h"
#include "colour/ink_table.h"
#include "support/message_boxes.h"

namespace fancy::testing {

inline CLRColor MakeColor(int model, uint16_t paletteWord = kCLRPalUser) {
  CLRColor c{};
  c.model = static_cast<uint16_t>(model);
  CLRSetPaletteWord(&c, paletteWord);
  return c;
}

inline CLRColor MakeRGB(int r, int g, int b) {
  CLRColor c = MakeColor(kCLRRGB255);
  c.value8[0] = static_cast<uint8_t>(b);
  c.value8[1] = static_cast<uint8_t>(g);
  c.value8[2] = static_cast<uint8_t>(r);
  return c;
}

inline CLRColor MakeCMYK(int model, int c, int m, int y, int k) {
  CLRColor color = MakeColor(model);
  color.value8[0] = static_cast<uint8_t>(c);
  color.value8[1] = static_cast<uint8_t>(m);
  color.value8[2] = static_cast<uint8_t>(y);
  color.value8[3] = static_cast<uint8_t>(k);
  return color;
}

// R, G, B of an RGB255 record.
struct RGB {
  int r, g, b;
  bool operator==(const RGB&) const = default;
};
inline RGB RGBOf(const CLRColor& c) { return {c.value8[2], c.value8[1], c.value8[0]}; }

// Sets one colour setting for a scope, through its setter.
class ScopedSetting {
 public:
  ScopedSetting(int32_t (*setter)(int32_t), int32_t value) : setter_(setter) {
    old_ = setter_(value);
  }
  ~ScopedSetting() { setter_(old_); }
  ScopedSetting(const ScopedSetting&) = delete;
  ScopedSetting& operator=(const ScopedSetting&) = delete;

 private:
  int32_t (*setter_)(int32_t);
  int32_t old_;
};

// Frees the ink and Hexachrome tables whatever loads are held.
inline void ReleaseColourTables() {
  while (InkTableLoadCount() > 0) InkTableRelease();
  while (HexTableLoadCount() > 0) HexTableRelease();
}

// An ink table held for a test, from the text of a file.
class ScopedInks {
 public:
  explicit ScopedInks(const std::string& text) {
    ReleaseColourTables();
    InkTableLoadText(text.data(), text.size());
  }
  ~ScopedInks() { ReleaseColourTables(); }
  ScopedInks(const ScopedInks&) = delete;
  ScopedInks& operator=(const ScopedInks&) = delete;
};

}  // namespace fancy::testing
