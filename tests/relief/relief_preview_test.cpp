// The dialogs' preview: the engine on Images gives what a run on the
// host's rows gives, and the host's record comes back as it was.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "frame/module_state.h"
#include "frame/presets.h"
#include "frame/result_codes.h"
#include "imaging/image.h"
#include "relief/relief_memory.h"
#include "relief/relief_preview.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"

namespace fancy {
namespace {

using testing::HostImage;
using testing::TestHost;

std::vector<testing::ProgressCall> gProgress;

// A wide picture comes from the host a few rows at a time; a preview of the
// whole size works it in one go, from Images, and gives the same result.
TEST(ReliefPreviewTest, PreviewOfTheWholeSizeIsTheBandedRunAndTheRecordIsRestored) {
  testing::ConfigFolder config;
  testing::MessageBoxRecorder boxes;
  ResetPresetFilePath();
  ModuleShutdown();
  struct Case {
    int32_t filterId;
    int16_t mode;
    int32_t type;
  };
  for (const Case& c : {Case{kFilterGlass, kModeRGB, kImageBGR24},
                        Case{kFilterKnurl, kModeCMYK, kImageCMYK32},
                        Case{kFilterGlass, kModeGray, kImageGrey8}}) {
    SCOPED_TRACE(::testing::Message() << c.filterId << " mode " << c.mode);
    const int32_t w = 2400, h = 40;
    TestHost host(c.filterId, w, h, c.mode);
    host.FillPattern(4);
    host.SetMask(0);
    for (int32_t y = 0; y < h; ++y)
      for (int32_t x = 0; x < w; ++x)
        host.mask().at(x, y, 0) = std::hypot((x - 1200) / 40.0, y - 18.0) < 11 ? 255 : 0;
    const HostImage before = host.image();
    ASSERT_EQ(host.Call(kSelectorParameters), kNoError);
    ReliefParams& kept = reinterpret_cast<ReliefRecord*>(host.effect())->params;
    kept.refraction = 100;  // rays reach far into the rows round a band
    const ReliefParams params = kept;
    ASSERT_EQ(host.Repeat(), kNoError);
    EXPECT_GT(host.advanceCalls(), 3) << "two reads of the selection and more than one band";

    // The preview's copies hold the host's bytes, CMYK inverted as in its rows.
    std::vector<uint8_t> source = before.pixels, mask = host.mask().pixels;
    std::vector<uint8_t> target(source.size());
    Image* sourceImage = ImageCreateOnBuffer(c.type, w, h, 0, 0, source.data());
    Image* maskImage = ImageCreateOnBuffer(kImageGrey8, w, h, 0, 0, mask.data());
    Image* targetImage = ImageCreateOnBuffer(c.type, w, h, 0, 0, target.data());
    ASSERT_TRUE(sourceImage && maskImage && targetImage);
    // The buffers are packed; the images are told so.
    ASSERT_NE(ImageSetRowBytes(sourceImage, w * before.planes), 0);
    ASSERT_NE(ImageSetRowBytes(targetImage, w * before.planes), 0);
    ASSERT_NE(ImageSetRowBytes(maskImage, w), 0);

    FilterRecord saved = host.record();
    gProgress.clear();
    ReliefPreviewJob job{&host.record(), c.filterId, params,  sourceImage, maskImage,
                         targetImage,    nullptr,    [](int32_t done, int32_t total) {
                           gProgress.push_back({done, total});
                         }};
    ASSERT_EQ(ReliefPreview(job), kNoError);
    EXPECT_EQ(std::memcmp(&saved, &host.record(), sizeof(FilterRecord)), 0);
    ASSERT_GE(gProgress.size(), 3u);
    EXPECT_EQ(gProgress.front(), (testing::ProgressCall{-1, 100}));
    EXPECT_EQ(gProgress.back(), (testing::ProgressCall{-3, 100}));
    EXPECT_EQ(ReliefMemoryInUse(), 0);

    EXPECT_TRUE(target == host.image().pixels);
    ImageDestroy(sourceImage);
    ImageDestroy(maskImage);
    ImageDestroy(targetImage);
  }
  ResetPresetFilePath();
  ModuleShutdown();
}

}  // namespace
}  // namespace fancy
