// The tile source's BMP files: the 1-bit rule, the refusals with their
// codes and messages, rows longer than a read, the writer read back, and the
// crop. Every accepted form is run as a source in tile_run_test.cpp.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "frame/host_record.h"
#include "support/bmp_bytes.h"
#include "support/message_boxes.h"
#include "support/temp_dir.h"
#include "tile/source_file.h"

namespace fancy {
namespace {

using testing::BmpSpec;
using testing::MakeBmp;
using testing::MessageBoxRecorder;
using testing::TempDir;

struct ImageFree {
  void operator()(Image* image) const { ImageDestroy(image); }
};
using Owned = std::unique_ptr<Image, ImageFree>;

// Pixel (x, y) of a loaded picture, y counted from the picture's top: the
// picture holds the file's rows, bottom row first.
const uint8_t* PictureAt(const Image* image, int32_t x, int32_t y) {
  return ImagePixelAddress(image, x, image->height - 1 - y);
}

class BmpSource : public ::testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) {
    return dir_.Write(name, bytes);
  }
  int16_t Load(const std::string& path, Owned* out, int16_t mode = kModeRGB) {
    Image* image = nullptr;
    const int16_t code = LoadSourceBmp(path.c_str(), &image, mode);
    out->reset(image);
    return code;
  }
  TempDir dir_;
};

// Set bits are white and clear bits black, whatever the palette says, and a
// dark first entry is noticed but changes nothing.
TEST_F(BmpSource, OneBitFilesAreBlackAndWhiteBitsFromTheHighOneDown) {
  for (bool darkFirst : {false, true}) {
    BmpSpec spec;
    spec.width = 11, spec.height = 2, spec.bits = 1;
    spec.palette = darkFirst ? std::vector<std::array<uint8_t, 3>>{{0, 0, 0}, {255, 255, 255}}
                             : std::vector<std::array<uint8_t, 3>>{{255, 255, 255}, {9, 9, 9}};
    for (int32_t i = 0; i < 22; ++i) spec.pixels.push_back(uint32_t(i % 3 == 0));
    const std::string path = Write("b.bmp", MakeBmp(spec));

    std::FILE* file = std::fopen(path.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    BmpHeader header;
    ASSERT_EQ(ReadBmpHeader(file, &header), kSourceFileOk);
    BmpColour palette[256];
    int32_t colours = 0;
    const long before = std::ftell(file);
    EXPECT_EQ(ReadBmpPalette(header, file, palette, &colours),
              darkFirst ? kBmpPaletteDarkFirst : kBmpPaletteOrdinary);
    EXPECT_EQ(std::ftell(file), before) << "the file position is put back";
    std::fclose(file);

    Owned image;
    ASSERT_EQ(Load(path, &image), kSourceFileOk);
    for (int32_t i = 0; i < 22; ++i) {
      const uint8_t* p = PictureAt(image.get(), i % 11, i / 11);
      const uint8_t want = i % 3 == 0 ? 255 : 0;
      ASSERT_EQ(p[0], want) << i;
      ASSERT_EQ(p[1], want) << i;
      ASSERT_EQ(p[2], want) << i;
    }
  }
}

TEST_F(BmpSource, BadFilesGiveTheirCodesAndNoPicture) {
  BmpSpec good;
  good.width = 6, good.height = 5, good.bits = 8;
  good.pixels.assign(30, 1);
  const std::string bytes = MakeBmp(good);

  std::string magic = bytes;
  magic[0] = 'X';
  BmpSpec rle = good;
  rle.compression = 1;
  BmpSpec sixteen = good;
  sixteen.bits = 16;
  sixteen.pixels.assign(30, 0);
  std::string offPastEnd = bytes;
  offPastEnd[10] = char(0xF0), offPastEnd[11] = char(0xFF), offPastEnd[12] = 0x0F;
  std::string huge = bytes;
  huge[18] = 0x00, huge[19] = 0x7F;  // 32512 wide
  huge[22] = 0x00, huge[23] = 0x7F;  // 32512 high
  std::string negative = bytes;
  negative[25] = char(0xFF);  // height far below zero
  std::string manyColours = bytes;
  manyColours[46] = char(0xFF), manyColours[47] = char(0xFF), manyColours[48] = 0x7F;

  const struct {
    const char* name;
    std::string bytes;
    int16_t code;
  } cases[] = {
      {"empty", "", kSourceFileNotBmp},
      {"header cut short", bytes.substr(0, 30), kSourceFileNotBmp},
      {"not BM", magic, kSourceFileNotBmp},
      {"RLE", MakeBmp(rle), kSourceFileNotBmp},
      {"16 bits", MakeBmp(sixteen), kSourceFileNotBmp},
      {"negative height", negative, kSourceFileNotBmp},
      {"palette cut short", bytes.substr(0, 54 + 100), kSourceFileReadError},
      {"rows cut short", bytes.substr(0, bytes.size() - 3), kSourceFileReadError},
      {"pixels past the end", offPastEnd, kSourceFileReadError},
      {"too big to hold", huge, kSourceFileNoMemory},
  };
  for (const auto& c : cases) {
    Owned image;
    EXPECT_EQ(Load(Write("bad.bmp", c.bytes), &image), c.code) << c.name;
    EXPECT_EQ(image, nullptr) << c.name;
  }
  Owned image;
  EXPECT_EQ(Load(dir_.File("missing.bmp"), &image), kSourceFileOpenError);
  // More colours said to be used than the depth has: only 256 are read.
  EXPECT_EQ(Load(Write("many.bmp", manyColours), &image), kSourceFileOk);
  BmpSpec shortPalette = good;
  shortPalette.paletteEntries = 2;
  shortPalette.colorsUsed = 0x7FFFFFFF;
  EXPECT_EQ(Load(Write("few.bmp", MakeBmp(shortPalette)), &image), kSourceFileReadError)
      << "256 entries asked of a file that has 2 and a few rows";
}

// A row longer than a read's 65000 bytes makes no rows a read: nothing is
// read and the picture stays black.
TEST_F(BmpSource, RowsLongerThanOneReadAreNotRead) {
  BmpSpec spec;
  spec.width = 21667, spec.height = 2, spec.bits = 24;
  spec.pixels.assign(size_t(spec.width) * 2, 0xFFFFFF);
  Owned image;
  ASSERT_EQ(Load(Write("wide.bmp", MakeBmp(spec)), &image), kSourceFileOk);
  EXPECT_EQ(PictureAt(image.get(), 0, 0)[0], 0);
  EXPECT_EQ(PictureAt(image.get(), 21666, 1)[2], 0);

  spec.width = 21666;  // 64998 bytes a row: one row a read
  spec.pixels.assign(size_t(spec.width) * 2, 0xFFFFFF);
  ASSERT_EQ(Load(Write("wide.bmp", MakeBmp(spec)), &image), kSourceFileOk);
  EXPECT_EQ(PictureAt(image.get(), 21665, 1)[2], 255);
}

// Grey goes out as 8 bits with a grey palette and reads back as equal
// channels; CMYK as 32 bits; other types are not written. (RGB is read back
// in tile_preview_test.cpp.)
TEST_F(BmpSource, SavedPicturesReadBackAsTheyWere) {
  Owned grey(ImageCreate(kImageGrey8, 5, 3, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 0; x < 5; ++x) ImagePixelAddress(grey.get(), x, y)[0] = uint8_t(x * 50 + y);
  const std::string greyPath = dir_.File("grey.bmp");
  ASSERT_EQ(SaveImageBmp(grey.get(), greyPath.c_str()), kSourceFileOk);
  auto header = [](const std::string& path) {
    BmpHeader h{};
    std::FILE* file = std::fopen(path.c_str(), "rb");
    EXPECT_EQ(ReadBmpHeader(file, &h), kSourceFileOk);
    std::fclose(file);
    return h;
  };
  const BmpHeader h = header(greyPath);
  EXPECT_EQ(h.bitCount, 8);
  EXPECT_EQ(h.colorsUsed, 256u);
  EXPECT_EQ(h.fileSize, 256u * 4 + 54 + uint32_t(grey->imageBytes));
  Owned back;
  ASSERT_EQ(Load(greyPath, &back), kSourceFileOk);
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 0; x < 5; ++x)
      for (int32_t c = 0; c < 3; ++c)
        ASSERT_EQ(ImagePixelAddress(back.get(), x, y)[c], uint8_t(x * 50 + y));

  Owned cmyk(ImageCreate(kImageCMYK32, 3, 3, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
  ASSERT_EQ(SaveImageBmp(cmyk.get(), dir_.File("cmyk.bmp").c_str()), kSourceFileOk);
  EXPECT_EQ(header(dir_.File("cmyk.bmp")).bitCount, 32);
  Owned lab(ImageCreate(kImageLab24, 3, 3, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
  EXPECT_EQ(SaveImageBmp(lab.get(), dir_.File("lab.bmp").c_str()), kSourceFileReadError);
  EXPECT_EQ(SaveImageBmp(grey.get(), dir_.File("no/such/folder/x.bmp").c_str()),
            kSourceFileReadError);
}

TEST_F(BmpSource, FileErrorsShowTheirMessagesWithThePath) {
  MessageBoxRecorder boxes;
  for (int16_t code : {kSourceFileNotBmp, kSourceFileNotBmpToo, kSourceFileReadError,
                       kSourceFileOpenError, kSourceFileNoMemory, kSourceFileOk})
    ShowFileError(nullptr, "C:\\tiles\\a.bmp", code);
  ASSERT_EQ(boxes.boxes().size(), 5u) << "code 0 shows nothing";
  const std::string notValid =
      "C:\\tiles\\a.bmp is not a valid source file.\r\nOnly non-compressed BMP files are "
      "supported.";
  EXPECT_EQ(boxes.boxes()[0].text, notValid);
  EXPECT_EQ(boxes.boxes()[1].text, notValid);
  EXPECT_EQ(boxes.boxes()[2].text, "Error reading file C:\\tiles\\a.bmp.");
  EXPECT_EQ(boxes.boxes()[3].text, "Error opening file C:\\tiles\\a.bmp.");
  EXPECT_EQ(boxes.boxes()[4].text, "Error - low memory.");
  for (const auto& box : boxes.boxes()) {
    EXPECT_EQ(box.caption, "Tessaris Warning");
    EXPECT_EQ(box.flags & 0xF0, 0x30u) << "a warning icon";
  }
  // The text is cut to the box's 200-character buffer, never overrun.
  boxes.Clear();
  ShowFileError(nullptr, std::string(500, 'p').c_str(), kSourceFileOpenError);
  EXPECT_EQ(boxes.boxes()[0].text, "Error opening file " + std::string(199 - 19, 'p'));
}

TEST(SourceCrop, ALargerPictureIsCutToTheImagesSizeAboutItsCentre) {
  SourceCrop crop;
  EXPECT_TRUE(ComputeSourceCrop(300, 200, 300, 250, &crop)) << "nothing to cut";
  EXPECT_EQ(crop.left, 0);
  EXPECT_EQ(crop.right, 300);
  EXPECT_EQ(crop.bottom, 200);
  EXPECT_FALSE(ComputeSourceCrop(501, 200, 300, 250, &crop));
  EXPECT_EQ(crop.left, 100);
  EXPECT_EQ(crop.right, 400);
  EXPECT_EQ(crop.top, 0);
  EXPECT_EQ(crop.bottom, 200);
  EXPECT_FALSE(ComputeSourceCrop(100, 999, 300, 250, &crop));
  EXPECT_EQ(crop.top, 374);
  EXPECT_EQ(crop.bottom, 624);
  EXPECT_EQ(crop.right, 100);
}

}  // namespace
}  // namespace fancy
