// Helpers of the stroke tests: a configuration folder laid out as the style
// file's location rule expects (DIR/Config and DIR/Plugins beside it), brush
// files made to order, and a second pass run over hand-made strokes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "stroke/stroke_state.h"
#include "support/temp_dir.h"

namespace fancy::testing {

// A configuration folder "Config" found through a registry stand-in of its
// own, and "Plugins" beside it. Forgotten again at the end.
class StyleFolder {
 public:
  StyleFolder();
  ~StyleFolder();
  StyleFolder(const StyleFolder&) = delete;
  StyleFolder& operator=(const StyleFolder&) = delete;

  std::string plugins() const { return temp_.File("Plugins"); }
  std::string styleFile() const { return temp_.File("Plugins/brushka.ini"); }
  // Writes brushka.ini; returns its path.
  std::string WriteStyleFile(const std::string& text) const;
  std::string ReadStyleFile() const { return TempDir::Read(styleFile()); }
  // Writes bytes to Plugins/<name>; returns the full path.
  std::string WritePlugin(const std::string& name, const std::string& bytes) const;
  const TempDir& temp() const { return temp_; }

 private:
  TempDir temp_;
};

// The bytes of a brush file. By default an 8-bit BMP with a 40-byte header
// and a grey table of 256 entries; value(x, y) gives the raster's row y in
// file order (the engine's top row first).
struct BrushBmp {
  int32_t width = 8;
  int32_t height = 8;
  std::function<uint8_t(int32_t x, int32_t y)> value = [](int32_t, int32_t) { return 255; };
  uint32_t headerSize = 40;
  uint16_t bitCount = 8;
  uint32_t compression = 0;
  uint32_t coloursUsed = 0;  // 0: 256 entries
  bool greyTable = true;
  size_t cutBytes = 0;       // bytes taken off the end

  std::string Bytes() const;
};

// Paints the second pass over canvas (width x height, three bytes a pixel)
// with the given strokes, as the engine's paint step does row by row, on a
// state of its own (order, paint rule and brush as given), with the
// strokes' boxes and skip flags as they stand.
void PaintStrokes(std::vector<StrokeEntry> strokes, const InstalledBrush& brush, int32_t width,
                  int32_t height, bool paintRule, int32_t order, std::vector<uint8_t>* canvas);

}  // namespace fancy::testing
