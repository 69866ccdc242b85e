#include "stroke_fixture.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "stroke/paint_pass.h"
#include "stroke/placement.h"
#include "support/bmp_bytes.h"
#include "support/config_folder.h"

namespace fancy::testing {

StyleFolder::StyleFolder() {
  std::filesystem::create_directories(temp_.File("Config"));
  std::filesystem::create_directories(temp_.File("Plugins"));
  temp_.Write("Config/tavinapp.ini", "[Config]\nPixelboxDir=host\n");
  PointConfigAt(temp_, temp_.File("Config"));
}

StyleFolder::~StyleFolder() { EndConfigFolder(); }

std::string StyleFolder::WriteStyleFile(const std::string& text) const {
  return temp_.Write("Plugins/brushka.ini", text);
}

std::string StyleFolder::WritePlugin(const std::string& name, const std::string& bytes) const {
  return temp_.Write("Plugins/" + name, bytes);
}

std::string BrushBmp::Bytes() const {
  const uint32_t entries = coloursUsed ? coloursUsed : 256;
  const uint32_t rowBytes = static_cast<uint32_t>((width + 3) / 4 * 4);
  const uint32_t offset = 14 + headerSize + (headerSize == 12 ? 0 : entries * 4);
  std::string out = "BM";
  Put32(out, offset + rowBytes * static_cast<uint32_t>(height));
  Put32(out, 0);
  Put32(out, offset);
  Put32(out, headerSize);
  if (headerSize == 12) {
    Put16(out, static_cast<uint32_t>(width));
    Put16(out, static_cast<uint32_t>(height));
    Put16(out, 1);
    Put16(out, bitCount);
  } else {
    Put32(out, static_cast<uint32_t>(width));
    Put32(out, static_cast<uint32_t>(height));
    Put16(out, 1);
    Put16(out, bitCount);
    Put32(out, compression);
    Put32(out, rowBytes * static_cast<uint32_t>(height));
    Put32(out, 2835);
    Put32(out, 2835);
    Put32(out, coloursUsed);
    Put32(out, 0);
    out.append(headerSize - 40, '\0');
    for (uint32_t i = 0; i < entries; ++i) {
      out.push_back(static_cast<char>(i));
      out.push_back(static_cast<char>(greyTable || i != 7 ? i : i + 1));
      out.push_back(static_cast<char>(i));
      out.push_back('\0');
    }
  }
  for (int32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < rowBytes; ++x)
      out.push_back(static_cast<char>(x < static_cast<uint32_t>(width) ? value(static_cast<int32_t>(x), y) : 0));
  out.resize(out.size() - std::min(cutBytes, out.size()));
  return out;
}

void PaintStrokes(std::vector<StrokeEntry> strokes, const InstalledBrush& brush, int32_t width,
                  int32_t height, bool paintRule, int32_t order, std::vector<uint8_t>* canvas) {
  StrokeEngineState s{};
  s.width = width;
  s.height = height;
  s.working.backgroundFromImage = true;
  s.working.paintRule = paintRule;
  s.order = order;
  s.brush = brush;
  s.table = strokes.data();
  s.count = static_cast<int32_t>(strokes.size());
  PaintPassBegin(&s);
  std::vector<uint8_t> out(static_cast<size_t>(width) * 3);
  for (int32_t r = 0; r < height; ++r)
    PaintRow(&s, canvas->data() + static_cast<size_t>(r) * width * 3, out.data(), r);
  ActiveListRelease(&s.active);
  ScanPoolRelease(&s.scans);
}

}  // namespace fancy::testing
