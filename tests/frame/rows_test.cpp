// Rows between host and effect: the request shapes, the host extension
// door, the host's Images as the effect reads them, and effects without an
// engine handing the image back unchanged.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/host_bridge.h"
#include "frame/module_state.h"
#include "frame/result_codes.h"
#include "imaging/image.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"

namespace fancy {
namespace {

using testing::HostImage;
using testing::MessageBoxRecorder;
using testing::TestHost;

class RowsTest : public ::testing::Test {
 protected:
  void SetUp() override { ModuleShutdown(); }
  void TearDown() override { ModuleShutdown(); }
  testing::ConfigFolder config_;
  MessageBoxRecorder boxes_;
};

// Without a style file the stroke record stays as made, with nothing to
// paint: the rows still travel the whole protocol and come back unchanged.
TEST_F(RowsTest, StrokeWithoutStyleFileGivesTheImageBackUnchanged) {
  const int16_t modes[] = {kModeGray, kModeRGB, kModeCMYK};
  const int32_t effects[] = {kFilterBrushka};
  for (int32_t id : effects) {
    for (int16_t mode : modes) {
      SCOPED_TRACE(::testing::Message() << "effect " << id << ", mode " << mode);
      TestHost host(id, 13, 9, mode);
      host.FillPattern(static_cast<uint32_t>(id * 10 + mode));
      host.SetMask();
      // Only part of the image is filtered; the rest is never asked for.
      host.record().filterRect = Rect16{2, 3, 8, 11};
      HostImage before = host.image();
      ASSERT_EQ(host.Run(), 0);
      EXPECT_EQ(host.image(), before);
      // A second run on the kept parameters does the same.
      ASSERT_EQ(host.Run(), 0);
      EXPECT_EQ(host.image(), before);
    }
  }
}

TEST_F(RowsTest, StrokeAsksForOneRowOfThreePlanesAtATime) {
  for (int16_t mode : {kModeGray, kModeRGB, kModeCMYK}) {
    TestHost host(kFilterBrushka, 7, 5, mode);
    host.record().filterRect = Rect16{1, 2, 4, 6};
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    ASSERT_EQ(host.Call(kSelectorPrepare), 0);
    ASSERT_EQ(host.Call(kSelectorStart), 0);
    // The engine asks for rows of the rectangle in two passes; the second
    // asks for every row in turn.
    std::vector<int16_t> tops;
    while (host.record().inRect.bottom != 0 && tops.size() < 100) {
      const FilterRecord& r = host.record();
      tops.push_back(r.inRect.top);
      EXPECT_GE(r.inRect.top, 1);
      EXPECT_LT(r.inRect.top, 4);
      EXPECT_EQ(r.inRect.bottom, r.inRect.top + 1);
      EXPECT_EQ(r.inRect.left, 2);
      EXPECT_EQ(r.inRect.right, 6);
      EXPECT_EQ(r.inLoPlane, 0);
      EXPECT_EQ(r.inHiPlane, 2) << "three planes whatever the image has";
      EXPECT_EQ(r.outLoPlane, 0);
      EXPECT_EQ(r.outHiPlane, 2);
      EXPECT_EQ(std::memcmp(&r.inRect, &r.outRect, sizeof(Rect16)), 0);
      ASSERT_EQ(host.Call(kSelectorContinue), 0);
    }
    ASSERT_GE(tops.size(), 3u);
    EXPECT_EQ(std::vector<int16_t>(tops.end() - 3, tops.end()), (std::vector<int16_t>{1, 2, 3}));
    const FilterRecord& r = host.record();
    EXPECT_EQ(r.inRect.top | r.inRect.left | r.inRect.bottom | r.inRect.right, 0);
    EXPECT_EQ(r.outRect.top | r.outRect.left | r.outRect.bottom | r.outRect.right, 0);
    EXPECT_EQ(host.Call(kSelectorFinish), 0);
  }
}

TEST_F(RowsTest, HostExtensionIsHeadedAndAskedOnlyWhereOffered) {
  TestHost host(kFilterBrushka, 2, 2, kModeRGB);
  FilterRecord& record = host.record();

  HostExtension extension;
  std::memset(&extension, 0xAB, sizeof(extension));
  HeadHostExtension(&extension, &record);
  EXPECT_EQ(extension.signature, kHostExtensionMagic);
  EXPECT_EQ(extension.version, 4u);
  EXPECT_EQ(extension.filterRecord, &record);
  const auto* bytes = reinterpret_cast<const uint8_t*>(&extension);
  size_t headEnd = offsetof(HostExtension, sourceImage);
  for (size_t i = headEnd; i < sizeof(extension); ++i) ASSERT_EQ(bytes[i], 0) << "byte " << i;

  HostExtension forDialog = ReadHostExtensionForDialog(&record);
  EXPECT_EQ(forDialog.sourceImage, host.objects().sourceImage);
  EXPECT_EQ(host.hostProcCalls(), 1);

  SendHostCommand(&record, 4711);
  EXPECT_EQ(host.commands(), (std::vector<uint32_t>{4711}));
  EXPECT_EQ(host.lastExtensionIn().commandId, 4711u);

  // Another host: the dialog gets a headed record with null objects, and the
  // command is dropped.
  record.hostSig = 0x3842494D;
  forDialog = ReadHostExtensionForDialog(&record);
  EXPECT_EQ(forDialog.sourceImage, nullptr);
  EXPECT_EQ(forDialog.displayContext, nullptr);
  EXPECT_EQ(forDialog.signature, 0x3842494Du);
  SendHostCommand(&record, 4712);
  EXPECT_EQ(host.hostProcCalls(), 2);
  EXPECT_EQ(host.commands().size(), 1u);
}

// Every pixel of an Image through the image model, rows packed.
std::vector<uint8_t> ReadAll(const Image* image, int32_t bytesPerPixel) {
  const int32_t width = ImageGetWidth(image), height = ImageGetHeight(image);
  std::vector<uint8_t> out(static_cast<size_t>(width) * height * bytesPerPixel, 0xEE);
  EXPECT_EQ(ImageReadPixels(image, 0, 0, width, height, width * bytesPerPixel, out.data()), 1);
  return out;
}

TEST_F(RowsTest, EffectReadsTheHostsPictureAndSelectionThroughItsImages) {
  const struct {
    int16_t mode;
    int32_t type;
  } cases[] = {{kModeGray, kImageGrey8}, {kModeRGB, kImageBGR24}, {kModeCMYK, kImageCMYK32}};
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << "mode " << c.mode);
    TestHost host(kFilterTessaris, 7, 5, c.mode);  // odd width: rows are packed, not padded
    host.FillPattern(static_cast<uint32_t>(c.mode));
    host.SetMask();
    for (int32_t x = 0; x < 7; ++x) host.mask().at(x, 2, 0) = static_cast<uint8_t>(x * 40);
    const int32_t planes = host.image().planes;

    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    const RunSlot* slot = host.runSlot();
    ASSERT_NE(slot->sourceImage, nullptr);
    ASSERT_NE(slot->maskImage, nullptr);
    EXPECT_EQ(ImageGetType(slot->sourceImage), c.type);
    EXPECT_EQ(ImageGetStorageKind(slot->sourceImage), kStorageBuffer);
    EXPECT_EQ(ReadAll(slot->sourceImage, planes), host.image().pixels);
    EXPECT_EQ(ImageGetType(slot->maskImage), kImageMask);
    EXPECT_EQ(ReadAll(slot->maskImage, 1), host.mask().pixels);
    // The bounds are inclusive: read from left to right and top to bottom
    // they give the whole selection.
    const HostExtension ext = ReadHostExtensionForDialog(&host.record());
    EXPECT_EQ(ext.maskImage, slot->maskImage);
    const int32_t w = ext.maskRight - ext.maskLeft + 1, h = ext.maskBottom - ext.maskTop + 1;
    ASSERT_EQ(w * h, 7 * 5);
    std::vector<uint8_t> inBounds(static_cast<size_t>(w * h));
    EXPECT_EQ(
        ImageReadPixels(ext.maskImage, ext.maskLeft, ext.maskTop, w, h, w, inBounds.data()), 1);
    EXPECT_EQ(inBounds, host.mask().pixels);
    ASSERT_EQ(host.Call(kSelectorFinish), 0);

    // A new buffer under the host's image: the next run reads it.
    std::vector<uint8_t> fresh(host.image().pixels.size());
    for (size_t i = 0; i < fresh.size(); ++i) fresh[i] = static_cast<uint8_t>(i * 7);
    host.image().pixels.swap(fresh);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    EXPECT_EQ(ReadAll(host.runSlot()->sourceImage, planes), host.image().pixels);
    ASSERT_EQ(host.Call(kSelectorFinish), 0);
  }
}

TEST_F(RowsTest, HelpFileCopyStopsAtTheRecordsEnd) {
  HostExtension extension{};
  std::memset(extension.helpFile, 'h', sizeof(extension.helpFile));  // no terminator
  extension.maskBottom = extension.maskLeft = extension.maskTop = extension.maskRight = 0x7878;
  char out[300];
  CopyHelpFile(extension, out, sizeof(out));
  EXPECT_EQ(std::strlen(out), 259u);
  EXPECT_EQ(std::string(out).find('x'), std::string::npos);
  char small[5];
  CopyHelpFile(extension, small, sizeof(small));
  EXPECT_STREQ(small, "hhhh");
}

}  // namespace
}  // namespace fancy
