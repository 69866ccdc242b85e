// The preview path: MakeTile from the dialog's picture, TilePreviewRender at
// full and reduced scale against the final run's result, and Save Tile.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "frame/module_state.h"
#include "frame/result_codes.h"
#include "frame/run_slot.h"
#include "support/bmp_bytes.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"
#include "tile/source_file.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"

namespace fancy {
namespace {

using testing::HostImage;
using testing::TestHost;

struct ImageFree {
  void operator()(Image* image) const { ImageDestroy(image); }
};
using Owned = std::unique_ptr<Image, ImageFree>;

constexpr int32_t kW = 140, kH = 110;

// An RGB Image with the host picture's bytes (both blue first, top row first).
Owned ImageOf(const HostImage& picture) {
  Owned image(ImageCreate(kImageBGR24, picture.width, picture.height, 0, 0,
                          kStorageOptionOneCell, nullptr, nullptr));
  for (int32_t y = 0; y < picture.height; ++y)
    std::memcpy(ImagePixelAddress(image.get(), 0, y), &picture.pixels[size_t(y) * picture.width * 3],
                size_t(picture.width) * 3);
  return image;
}

class TilePreview : public ::testing::Test {
 protected:
  void SetUp() override {
    ModuleShutdown();
    // The final run's result, and the picture it started from.
    TestHost host(kFilterTessaris, kW, kH, kModeRGB);
    host.FillPattern(21);
    original_ = host.image();
    ASSERT_EQ(host.Run(), kNoError);
    final_ = host.image();
    std::memcpy(&params_, host.effect(), sizeof params_);
    record_.filterRect = Rect16{0, 0, kH, kW};
    record_.imageMode = kModeRGB;
    record_.planes = 3;
  }
  void TearDown() override {
    TileResetState();
    ModuleShutdown();
  }
  // The tile as the dialog makes it.
  void MakePreviewTile(const Image* picture) {
    ASSERT_EQ(TileSetup(&record_, &params_, nullptr), kNoError);
    ASSERT_EQ(MakeTile(1, &record_, &params_, picture), kNoError);
  }

  testing::ConfigFolder config_;
  testing::MessageBoxRecorder boxes_;
  HostImage original_, final_;
  TileRecord params_{};
  FilterRecord record_{};
};

TEST_F(TilePreview, FullScaleShowsTheFinalResultAndHalfScaleEveryOtherPixel) {
  Owned source = ImageOf(original_);
  MakePreviewTile(source.get());
  Owned result(ImageSameFormat(source.get(), kW, kH));
  ASSERT_EQ(TilePreviewRender(result.get(), source.get(), 1.0), kNoError);
  for (int32_t y = 0; y < kH; ++y)
    ASSERT_EQ(0, std::memcmp(ImagePixelAddress(result.get(), 0, y),
                             &final_.pixels[size_t(y) * kW * 3], size_t(kW) * 3))
        << "row " << y;

  // At half scale each preview pixel shows the tile two pixels on.
  Owned small(ImageSameFormat(source.get(), kW / 2, kH / 2));
  Owned smallResult(ImageSameFormat(source.get(), kW / 2, kH / 2));
  ASSERT_EQ(TilePreviewRender(smallResult.get(), small.get(), 0.5), kNoError);
  for (int32_t y = 0; y < kH / 2; ++y)
    for (int32_t x = 0; x < kW / 2; ++x)
      ASSERT_EQ(0, std::memcmp(ImagePixelAddress(smallResult.get(), x, y),
                               &final_.pixels[(size_t(2 * y) * kW + size_t(2 * x)) * 3], 3))
          << x << "," << y;

  // Pictures that do not fit the tile are refused without a write.
  Owned grey(ImageCreate(kImageGrey8, kW, kH, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
  EXPECT_EQ(TilePreviewRender(grey.get(), grey.get(), 1.0), kErrFilterFailure);
  EXPECT_EQ(TilePreviewRender(result.get(), small.get(), 1.0), kErrFilterFailure);
  EXPECT_EQ(TilePreviewRender(result.get(), source.get(), 0.0), kErrFilterFailure);
}

// The dialog's CMYK pictures hold inks; the host's rows hold them inverted.
// The preview of the host's picture, in inks, is the final run's result in
// inks, under a merge (Multiply) that tells the two senses apart, whether
// the tile is cut from the picture itself or from a loaded BMP.
TEST_F(TilePreview, CmykPreviewIsTheFinalResultInInks) {
  testing::BmpSpec spec;
  spec.width = 170, spec.height = 130, spec.bits = 24;
  for (int32_t i = 0; i < spec.width * spec.height; ++i)
    spec.pixels.push_back(uint32_t(i * 2654435761u >> 8));
  const std::string path = config_.temp().Write("source.bmp", testing::MakeBmp(spec));

  for (bool fromFile : {false, true}) {
    SCOPED_TRACE(fromFile ? "loaded source" : "the image itself");
    HostImage original, final;
    TileRecord params{};
    {
      TestHost host(kFilterTessaris, kW, kH, kModeCMYK);
      host.FillPattern(33);
      original = host.image();
      ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
      auto* record = reinterpret_cast<TileRecord*>(host.effect());
      record->mode = kTileModeMultiply;
      record->opacity = 70;
      if (fromFile) {
        record->sourceKind = kTileSourceFile;
        std::snprintf(record->sourcePath, sizeof record->sourcePath, "%s", path.c_str());
        ASSERT_EQ(host.Call(kSelectorFinish), kNoError);
        ASSERT_EQ(host.Run(), kNoError);  // the dialog crops it
        host.image() = original;
      }
      ASSERT_EQ(host.Repeat(), kNoError);
      final = host.image();
      std::memcpy(&params, host.effect(), sizeof params);
      ASSERT_EQ(params.sourceKind, fromFile ? kTileSourceFile : kTileSourceImage);
    }
    RunSlot slot{};
    if (fromFile) {
      Image* loaded = nullptr;
      ASSERT_EQ(LoadSourceBmp(path.c_str(), &loaded, kModeCMYK), kSourceFileOk);
      gTileState.loadedSource.reset(loaded);
      slot.loadedSource = loaded;
    }
    Owned source(
        ImageCreate(kImageCMYK32, kW, kH, 0, 0, kStorageOptionOneCell, nullptr, nullptr));
    for (int32_t y = 0; y < kH; ++y)
      for (int32_t x = 0; x < kW * 4; ++x)
        ImagePixelAddress(source.get(), 0, y)[x] =
            uint8_t(255 - original.pixels[size_t(y) * kW * 4 + size_t(x)]);
    Owned before(ImageDuplicate(source.get()));
    FilterRecord record{};
    record.filterRect = Rect16{0, 0, kH, kW};
    record.imageMode = kModeCMYK;
    record.planes = 4;
    ASSERT_EQ(TileSetup(&record, &params, &slot), kNoError);
    ASSERT_EQ(MakeTile(1, &record, &params, source.get()), kNoError);
    Owned result(ImageSameFormat(source.get(), kW, kH));
    ASSERT_EQ(TilePreviewRender(result.get(), source.get(), 1.0), kNoError);
    for (int32_t y = 0; y < kH; ++y)
      for (int32_t x = 0; x < kW * 4; ++x) {
        ASSERT_EQ(ImagePixelAddress(result.get(), 0, y)[x],
                  255 - final.pixels[size_t(y) * kW * 4 + size_t(x)])
            << x / 4 << "," << y << " plane " << x % 4;
        ASSERT_EQ(ImagePixelAddress(source.get(), 0, y)[x],
                  ImagePixelAddress(before.get(), 0, y)[x])
            << "the source is left as it was";
      }
    TileResetState();
  }
}

// Save Tile writes the tile the right way up: read back, its corner is the
// mother cell, and it repeats in the final result from the cell's corner.
TEST_F(TilePreview, SavedTileReadsBackAsTheCellsWallpaper) {
  Owned source = ImageOf(original_);
  MakePreviewTile(source.get());
  const std::string path = config_.temp().File("tile.bmp");
  ASSERT_EQ(SaveTileBmp(path.c_str()), kNoError);
  Image* loaded = nullptr;
  ASSERT_EQ(LoadSourceBmp(path.c_str(), &loaded, kModeRGB), kSourceFileOk);
  Owned tile(loaded);
  const int32_t side = std::min(kW / 3, kH / 3), left = kW / 2 - side / 2, top = kH / 2 - side / 2;
  ASSERT_EQ(tile->width, 2 * side);
  ASSERT_EQ(tile->height, 2 * side);
  for (int32_t y = 0; y < tile->height; ++y)
    for (int32_t x = 0; x < tile->width; ++x) {
      // Read back bottom row first; the final result holds the tile from the
      // cell's corner on, wrapping at the picture's edges by whole tiles.
      const uint8_t* p = ImagePixelAddress(tile.get(), x, tile->height - 1 - y);
      const int32_t fx = left + x < kW ? left + x : left + x - tile->width;
      const int32_t fy = top + y < kH ? top + y : top + y - tile->height;
      ASSERT_EQ(0, std::memcmp(p, &final_.pixels[(size_t(fy) * kW + size_t(fx)) * 3], 3))
          << x << "," << y;
    }
  TileResetState();
  EXPECT_EQ(SaveTileBmp(path.c_str()), kErrFilterFailure) << "no tile, nothing to save";
}

}  // namespace
}  // namespace fancy
