// Brush files: what is accepted, what is refused, and the raster's rows as
// the engine walks them.
#include <gtest/gtest.h>

#include <string>

#include "frame/block.h"
#include "stroke/brush_mask.h"
#include "stroke_fixture.h"

namespace fancy {
namespace {

using testing::BrushBmp;

class BrushMaskTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) {
    return dir_.Write(name, bytes);
  }
  testing::TempDir dir_;
};

TEST_F(BrushMaskTest, RasterKeepsTheFilesRowsAndZeroSpareBytes) {
  BrushBmp bmp;
  bmp.width = 5;  // rows padded to 8 bytes in the file
  bmp.height = 3;
  bmp.value = [](int32_t x, int32_t y) { return static_cast<uint8_t>(10 * y + x + 1); };
  const int32_t blocks = BlockLiveCount();
  BrushMask mask;
  ASSERT_EQ(BrushMaskLoad(Write("b.bmp", bmp.Bytes()).c_str(), &mask), 0);
  EXPECT_EQ(mask.width, 5);
  EXPECT_EQ(mask.height, 3);
  EXPECT_EQ(mask.flag, 1);
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 0; x < 8; ++x)
      EXPECT_EQ(mask.raster[y * 8 + x], x < 5 ? 10 * y + x + 1 : 0) << x << "," << y;
  for (int32_t i = 24; i < 24 + BrushMaskSpareBytes(5); ++i) ASSERT_EQ(mask.raster[i], 0) << i;
  EXPECT_EQ(BrushMaskSpareBytes(5), 1024);
  EXPECT_EQ(BrushMaskSpareBytes(3000), 3001) << "a wide brush's last row can be overread";
  BrushMaskFree(&mask);
  EXPECT_EQ(mask.raster, nullptr);
  EXPECT_EQ(BlockLiveCount(), blocks);
  BrushMaskFree(&mask);  // an empty mask is harmless

  // A table of 16 colours: the data follows it straight away.
  bmp.coloursUsed = 16;
  bmp.value = [](int32_t x, int32_t) { return static_cast<uint8_t>(x); };
  ASSERT_EQ(BrushMaskLoad(Write("c.bmp", bmp.Bytes()).c_str(), &mask), 0);
  EXPECT_EQ(mask.raster[4], 4);
  BrushMaskFree(&mask);
}

TEST_F(BrushMaskTest, AnythingButAPlainGreyByteRasterIsRefused) {
  struct Case {
    const char* name;
    BrushBmp bmp;
  };
  std::vector<Case> cases;
  auto add = [&](const char* name, auto change) {
    BrushBmp bmp;
    change(bmp);
    cases.push_back({name, bmp});
  };
  add("24-bit", [](BrushBmp& b) { b.bitCount = 24; });
  add("4-bit", [](BrushBmp& b) { b.bitCount = 4; });
  add("short header", [](BrushBmp& b) { b.headerSize = 12; });
  add("colour table", [](BrushBmp& b) { b.greyTable = false; });
  add("compressed", [](BrushBmp& b) { b.compression = 1; });
  add("truncated raster", [](BrushBmp& b) { b.cutBytes = 1; });
  add("truncated table", [](BrushBmp& b) { b.cutBytes = 8 * 8 + 100; });
  add("cut in the header", [](BrushBmp& b) { b.cutBytes = 8 * 8 + 1024 + 20; });
  add("zero width", [](BrushBmp& b) { b.width = 0; });
  add("table over 256", [](BrushBmp& b) { b.coloursUsed = 300; });
  const int32_t blocks = BlockLiveCount();
  for (const Case& c : cases) {
    BrushMask mask;
    mask.width = 99;
    EXPECT_EQ(BrushMaskLoad(Write("x.bmp", c.bmp.Bytes()).c_str(), &mask), -1) << c.name;
    EXPECT_EQ(mask.raster, nullptr) << c.name;
    EXPECT_EQ(mask.width, 0) << c.name;
    EXPECT_EQ(mask.height, 0) << c.name;
  }
  EXPECT_EQ(BlockLiveCount(), blocks);

  // A header that promises a raster of a gigabyte is refused before any
  // memory is taken for it.
  BrushBmp huge;
  std::string bytes = huge.Bytes();
  bytes[18] = bytes[19] = bytes[22] = bytes[23] = '\x7F';  // 32639 x 32639
  BrushMask mask;
  EXPECT_EQ(BrushMaskLoad(Write("huge.bmp", bytes).c_str(), &mask), -1);

  std::string notBmp = huge.Bytes();
  notBmp[0] = 'P';
  EXPECT_EQ(BrushMaskLoad(Write("p.bmp", notBmp).c_str(), &mask), -1);
  EXPECT_EQ(BrushMaskLoad(dir_.File("missing.bmp").c_str(), &mask), -1);
  EXPECT_EQ(BrushMaskLoad(dir_.path().c_str(), &mask), -1) << "a folder";
  EXPECT_EQ(BrushMaskLoad("", &mask), -1);
  EXPECT_EQ(BrushMaskLoad(Write("empty.bmp", "").c_str(), &mask), -1);
}

}  // namespace
}  // namespace fancy
