// The run as the host drives it: entries, selectors, the failure clean-up and
// the life of the RunSlot and the EffectRecord.
#include <gtest/gtest.h>

#include "frame/block.h"
#include "frame/current_record.h"
#include "frame/entry.h"
#include "frame/module_state.h"
#include "frame/prepare.h"
#include "frame/result_codes.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"
#include "support/test_host.h"

namespace fancy {
namespace {

using testing::MessageBoxRecorder;
using testing::ProgressCall;
using testing::TestHost;

class DispatchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ModuleShutdown();
    baseline_ = BlockLiveCount();
  }
  void TearDown() override { ModuleShutdown(); }
  int32_t BlocksMade() const { return BlockLiveCount() - baseline_; }

  testing::ConfigFolder config_;
  MessageBoxRecorder boxes_;
  int32_t baseline_ = 0;
};

TEST_F(DispatchTest, AboutNeedsNoRecordAndLeavesTheDataSlotAlone) {
  for (int32_t id : {kFilterBrushka, kFilterTessaris}) {
    intptr_t data = 0x5A5A;
    int16_t result = 77;
    FilterEntry(kSelectorAbout, nullptr, &data, &result, id);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(data, 0x5A5A);
  }
  ASSERT_EQ(boxes_.boxes().size(), 2u);
  for (const auto& box : boxes_.boxes()) {
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_EQ(box.caption, "About Fancy");
    EXPECT_NE(box.text.find("Version 8.00"), std::string::npos);
  }
  EXPECT_NE(boxes_.boxes()[0].text.find("Paint Brushka"), std::string::npos);
  EXPECT_NE(boxes_.boxes()[1].text.find("Tessaris"), std::string::npos);

  // The module's start formed the default help path.
  EXPECT_EQ(std::string(ModuleHelpPath()), config_.programsDir() + "Pixelbx.HLP");

  // A null data slot and a null result word are harmless too.
  FilterEntry(kSelectorAbout, nullptr, nullptr, nullptr, kFilterBrushka);
  EXPECT_EQ(BlocksMade(), 0);
}

TEST_F(DispatchTest, UnknownSelectorFailsAndEndsTheRun) {
  {
    TestHost host(kFilterBrushka, 8, 4, kModeRGB);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    ASSERT_NE(host.runSlot(), nullptr);
    EXPECT_EQ(host.Call(6), kErrFilterFailure);
    EXPECT_EQ(host.dataSlot(), 0);
    // The block made in this run went with the failure.
    EXPECT_EQ(BlocksMade(), 0);

    // With no run under way an unknown selector only fails.
    EXPECT_EQ(host.Call(-1), kErrFilterFailure);
    EXPECT_EQ(host.Call(0x7FFF), kErrFilterFailure);
    EXPECT_EQ(host.dataSlot(), 0);
  }
  EXPECT_EQ(BlocksMade(), 0);
}

TEST_F(DispatchTest, CancelFreesOnlyABlockMadeInThatRun) {
  TestHost host(kFilterBrushka, 6, 5, kModeRGB);
  host.SetAbort([](int32_t call) { return call == 2; });
  EXPECT_EQ(host.Run(), kErrUserCancelled);
  // The host still called selector 5 after the cancel.
  EXPECT_EQ(host.calls().back().selector, kSelectorFinish);
  EXPECT_EQ(host.dataSlot(), 0);
  EXPECT_EQ(host.record().parameters, nullptr);
  EXPECT_EQ(BlocksMade(), 0) << "the run's block and RunSlot are both gone";

  // A good run leaves its block with the host; an edit to it survives a
  // later cancelled run.
  host.SetAbort(nullptr);
  ASSERT_EQ(host.Run(), 0);
  auto* stroke = reinterpret_cast<StrokeRecord*>(host.effect());
  ASSERT_NE(stroke, nullptr);
  stroke->density = 42;
  char** kept = host.record().parameters;
  int32_t blocksKept = BlocksMade();

  host.SetAbort([](int32_t) { return true; });
  EXPECT_EQ(host.Run(), kErrUserCancelled);
  EXPECT_EQ(host.record().parameters, kept);
  EXPECT_EQ(reinterpret_cast<StrokeRecord*>(host.effect())->density, 42);
  EXPECT_EQ(BlocksMade(), blocksKept);

  // An abort procedure that answers no lets the run finish.
  host.ClearLog();
  host.SetAbort([](int32_t) { return false; });
  EXPECT_EQ(host.Run(), 0);
  EXPECT_GT(host.abortCalls(), 0);
}

TEST_F(DispatchTest, ParametersOfAnotherEffectGetANewBlock) {
  TestHost host(kFilterTessaris, 64, 64, kModeRGB);
  ASSERT_EQ(host.Run(), 0);
  char** tile = host.record().parameters;
  ASSERT_EQ(host.effect()->filterId, kFilterTessaris);
  EXPECT_EQ(host.effect()->effectClass, kClassTile);

  host.UseEntry(kFilterBrushka);
  ASSERT_EQ(host.Call(kSelectorParameters), 0);
  EXPECT_EQ(host.runSlot()->isFresh, 1);
  EXPECT_NE(host.record().parameters, tile);
  EXPECT_EQ(host.effect()->filterId, kFilterBrushka);
  EXPECT_EQ(host.effect()->effectClass, kClassStroke);
  // The old block is overwritten in the field, not freed.
  EXPECT_EQ(reinterpret_cast<EffectHead*>(*tile)->filterId, kFilterTessaris);
  ASSERT_EQ(host.Call(kSelectorFinish), 0);

  // The next run of the same effect finds its block.
  char** stroke = host.record().parameters;
  ASSERT_EQ(host.Call(kSelectorParameters), 0);
  EXPECT_EQ(host.runSlot()->isFresh, 0);
  EXPECT_EQ(host.record().parameters, stroke);
  EXPECT_EQ(host.Call(kSelectorFinish), 0);
}

TEST_F(DispatchTest, RepeatWithoutDialogRunsOnTheKeptParameters) {
  TestHost host(kFilterBrushka, 5, 3, kModeRGB);
  // Nothing to repeat yet: selector 3 has no record to read.
  EXPECT_EQ(host.Repeat(), kErrFilterFailure);
  EXPECT_EQ(host.dataSlot(), 0);

  ASSERT_EQ(host.Run(), 0);
  char** kept = host.record().parameters;
  reinterpret_cast<StrokeRecord*>(host.effect())->seed = 321;
  const int32_t continues = host.continueCalls();
  host.ClearLog();
  int32_t blocks = BlocksMade();

  ASSERT_EQ(host.Repeat(), 0);
  for (const auto& call : host.calls()) EXPECT_NE(call.selector, kSelectorParameters);
  EXPECT_EQ(host.record().parameters, kept);
  EXPECT_EQ(reinterpret_cast<StrokeRecord*>(host.effect())->seed, 321);
  EXPECT_EQ(host.hostProcCalls(), 2) << "the prepare step and the stroke start each ask once";
  EXPECT_EQ(host.continueCalls(), continues) << "the same rows as the first run";
  EXPECT_EQ(BlocksMade(), blocks);

  // A repeat whose prepare step fails frees the slot it made but keeps the
  // host's block.
  host.record().planes = 2;
  EXPECT_EQ(host.Repeat(), kErrFilterFailure);
  EXPECT_EQ(host.dataSlot(), 0);
  EXPECT_EQ(host.record().parameters, kept);
  EXPECT_EQ(BlocksMade(), blocks);
}

TEST_F(DispatchTest, ImageTestAcceptsFourPlanesOrOneOrThreeOutsideCMYK) {
  struct Case {
    int16_t planes;
    int16_t mode;
    bool accepted;
  };
  const Case cases[] = {
      {4, kModeCMYK, true},  {4, kModeRGB, true},   {3, kModeLab, true},
      {1, kModeGray, true},  {3, kModeCMYK, false}, {1, kModeCMYK, false},
      {2, kModeGray, false}, {0, kModeGray, false}, {5, kModeMultichannel, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(AcceptsImage(c.planes, c.mode), c.accepted) << c.planes << " planes, mode " << c.mode;
    TestHost host(kFilterTessaris, 3, 3, kModeCMYK);
    host.record().planes = c.planes;
    host.record().imageMode = c.mode;
    int16_t result = host.Call(kSelectorParameters);
    EXPECT_EQ(result, c.accepted ? 0 : kErrFilterFailure) << c.planes << " planes, mode " << c.mode;
    if (result == 0) host.Call(kSelectorFinish);
    EXPECT_EQ(host.dataSlot(), 0);
  }
  EXPECT_EQ(BlocksMade(), 0);
}

TEST_F(DispatchTest, RowsPerChunkKeepsARequestWithin64000Bytes) {
  // Rows are padded to four bytes.
  EXPECT_EQ(RowsPerChunk(Rect16{0, 0, 10, 1}, 4), 16000);
  EXPECT_EQ(RowsPerChunk(Rect16{0, 0, 10, 5}, 3), 4000);  // 15 bytes pad to 16
  EXPECT_EQ(RowsPerChunk(Rect16{0, 0, 1, 16000}, 4), 1);  // exactly 64000
  EXPECT_EQ(RowsPerChunk(Rect16{0, 0, 1, 32767}, 3), 1);
  EXPECT_EQ(RowsPerChunk(Rect16{0, 100, 1, 101}, 3), 16000);  // the width, not right
  EXPECT_GE(RowsPerChunk(Rect16{0, 9, 1, 2}, 3), 1);  // inverted: still usable

  // Selector 3 stores it and sets the planes of the requests.
  {
    TestHost host(kFilterTessaris, 64, 64, kModeCMYK);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    ASSERT_EQ(host.Call(kSelectorStart), 0);
    EXPECT_EQ(host.runSlot()->rowsPerChunk, 250);
    EXPECT_EQ(host.record().inLoPlane, 0);
    EXPECT_EQ(host.record().inHiPlane, 3);
    EXPECT_EQ(host.record().outHiPlane, 3);
    EXPECT_EQ(host.Call(kSelectorFinish), 0);
  }
  {
    TestHost host(kFilterTessaris, 16001, 50, kModeCMYK);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    ASSERT_EQ(host.Call(kSelectorStart), 0);
    EXPECT_EQ(host.runSlot()->rowsPerChunk, 1);
    EXPECT_EQ(host.Call(kSelectorFinish), 0);
  }
}

TEST_F(DispatchTest, ProgressMarksStartAndFinishForThePrivateHost) {
  TestHost host(kFilterTessaris, 64, 64, kModeGray);
  ASSERT_EQ(host.Run(), 0);
  ASSERT_GE(host.progress().size(), 2u);
  EXPECT_EQ(host.progress().front(), (ProgressCall{-1, 1}));
  EXPECT_EQ(host.progress().back(), (ProgressCall{-3, 1}));

  // Selector 5 with no run under way is harmless and still says so.
  host.ClearLog();
  EXPECT_EQ(host.Call(kSelectorFinish), 0);
  EXPECT_EQ(host.progress(), (std::vector<ProgressCall>{{-3, 1}}));

  // A host without progressProc gets no calls and the run still works.
  host.OfferProgress(false);
  host.ClearLog();
  EXPECT_EQ(host.Run(), 0);
  EXPECT_TRUE(host.progress().empty());
}

TEST_F(DispatchTest, ReliefNeedsAMaskAndDoesItsWorkInStart) {
  for (int32_t id : {kFilterGlass, kFilterKnurl}) {
    TestHost host(id, 4, 4, kModeRGB);
    EXPECT_EQ(host.Run(), kErrReportedFailure);
    EXPECT_EQ(host.dataSlot(), 0);
    EXPECT_EQ(host.record().parameters, nullptr);
    ASSERT_EQ(boxes_.boxes().size(), 1u);
    EXPECT_EQ(boxes_.boxes()[0].caption, "Error");
    EXPECT_EQ(boxes_.boxes()[0].text, "This filter requires a mask.");
    EXPECT_EQ(boxes_.boxes()[0].owner, nullptr);
    boxes_.Clear();

    host.SetMask();
    ASSERT_EQ(host.Run(), 0);
    EXPECT_EQ(host.continueCalls(), 0);
    // Continue is not expected; if it comes it fails, and the block that
    // was found at the start survives.
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    ASSERT_EQ(host.Call(kSelectorStart), 0);
    EXPECT_EQ(host.Call(kSelectorContinue), kErrFilterFailure);
    EXPECT_EQ(host.dataSlot(), 0);
    ASSERT_NE(host.effect(), nullptr);
    // A repeat without the mask fails in its prepare step, after the box.
    host.record().haveMask = 0;
    EXPECT_EQ(host.Repeat(), kErrReportedFailure);
    EXPECT_EQ(boxes_.boxes().size(), 1u);
    boxes_.Clear();
  }
}

TEST_F(DispatchTest, PrepareTakesTheHostsObjects) {
  TestHost host(kFilterTessaris, 64, 64, kModeRGB);
  host.SetMask();
  host.objects().helpFile = "/opt/host/help/host.hlp";
  // Another host's signature: hostProc is asked all the same.
  host.record().hostSig = 0x3842494D;
  ASSERT_EQ(host.Call(kSelectorParameters), 0);
  const RunSlot* slot = host.runSlot();
  EXPECT_EQ(slot->sourceImage, host.objects().sourceImage);
  EXPECT_EQ(slot->displayContext, host.objects().displayContext);
  EXPECT_EQ(slot->maskImage, host.objects().maskImage);
  EXPECT_EQ(std::string(slot->hostDir), config_.hostDir());
  EXPECT_EQ(std::string(ModuleHelpPath()), "/opt/host/help/host.hlp");
  EXPECT_EQ(HostWindow(), host.record().platformData->hostWindow);
  EXPECT_EQ(CurrentFilterRecord(), &host.record());
  EXPECT_EQ(host.lastExtensionIn().signature, 0x3842494Du);
  EXPECT_EQ(host.lastExtensionIn().filterRecord, &host.record());

  // The first window stays the owner for the module's life.
  PlatformData other{reinterpret_cast<void*>(0x1000)};
  host.record().platformData = &other;
  ASSERT_EQ(host.Call(kSelectorFinish), 0);
  EXPECT_NE(HostWindow(), other.hostWindow);

  // Without the host's door, or without one of its objects, nothing runs.
  host.OfferExtension(false);
  EXPECT_EQ(host.Run(), kErrFilterFailure);
  host.OfferExtension(true);
  host.objects().displayContext = nullptr;
  EXPECT_EQ(host.Run(), kErrFilterFailure);
  EXPECT_EQ(host.dataSlot(), 0);
}

TEST_F(DispatchTest, SelectorTwoGivesMemoryAdviceOnlyForTheTile) {
  for (int32_t id : {kFilterBrushka, kFilterTessaris}) {
    TestHost host(id, 64, 64, kModeRGB);
    ASSERT_EQ(host.Call(kSelectorParameters), 0);
    host.record().bufferSpace = 999;
    EXPECT_EQ(host.Call(kSelectorPrepare), 0);
    EXPECT_EQ(host.record().bufferSpace >= 2459776, id == kFilterTessaris);
    EXPECT_EQ(host.record().bufferSpace == 0, id == kFilterBrushka);
    EXPECT_EQ(host.Call(kSelectorFinish), 0);
  }
}

TEST_F(DispatchTest, ForeignOrMissingRecordsAreRefused) {
  TestHost host(kFilterTessaris, 64, 64, kModeRGB);
  ASSERT_EQ(host.Run(), 0);
  // The stroke entry must not run on the tile's record without selector 1.
  host.UseEntry(kFilterBrushka);
  EXPECT_EQ(host.Repeat(), kErrFilterFailure);
  EXPECT_EQ(host.dataSlot(), 0);
  EXPECT_EQ(host.effect()->filterId, kFilterTessaris);

  // An entry for an effect that does not exist fails to make its record and
  // leaves the host's block alone.
  int32_t blocks = BlocksMade();
  host.UseEntry(204);
  EXPECT_EQ(host.Call(kSelectorParameters), kErrFilterFailure);
  EXPECT_EQ(host.dataSlot(), 0);
  EXPECT_EQ(host.effect()->filterId, kFilterTessaris);
  EXPECT_EQ(BlocksMade(), blocks);

  // A null record fails every run selector without touching anything.
  intptr_t data = 0;
  int16_t result = 0;
  for (int16_t selector = 1; selector <= 5; ++selector) {
    FilterEntry(selector, nullptr, &data, &result, kFilterBrushka);
    EXPECT_EQ(result, kErrFilterFailure);
    EXPECT_EQ(data, 0);
  }
}

}  // namespace
}  // namespace fancy
