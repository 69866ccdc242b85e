// What the host's `parameters` field holds after a run, good or failed: the
// module frees a block that it made for a run that fails and leaves the
// field as it stands, so the host must take back the block it handed in.
#include <cstring>

#include <gtest/gtest.h>

#include "effect_module.h"
#include "filter_host.h"
#include "frame/effect_hooks.h"
#include "frame/effect_record.h"
#include "params_file.h"
#include "run_fancyhost.h"
#include "support/config_folder.h"
#include "support/message_boxes.h"

namespace fancy {
namespace {

constexpr int32_t kWidth = 12, kHeight = 8;

char** Block(char mark) { return MakeParamsHandle({uint8_t(mark), 'x', 'y'}); }

// Runs a stand-in module that keeps to the module's rule: selector 1 puts a
// block of its own ('M') in `parameters` unless it is handed one; the
// selector failAt fails, and the failure frees the block made in the run
// while the field goes on naming it. The rows are one request of one row.
struct Outcome {
  FilterRunResult run;
  char** after = nullptr;           // `parameters` once the run is over
  char** made = nullptr;            // the module's block, while it lives
  bool finished = false;
  char** atFinish = nullptr;        // `parameters` as selector 5 saw it
  char markAtFinish = 0;
};

Outcome RunFrameLike(char** handed, int16_t failAt) {
  HostImage image = ToHostImage(testing::TestPicture(kWidth, kHeight, PixelMode::kGrey),
                                PixelMode::kGrey);
  FilterHost host;
  host.settings.quiet = true;
  FilterHostInit(&host, &image, nullptr, Rect16{0, 0, kHeight, kWidth}, handed);
  Outcome o;
  auto module = [&](int16_t selector, FilterRecord* r, intptr_t*, int16_t* result) {
    *result = 0;
    if (selector == kSelectorParameters && !(r->parameters && **r->parameters == 'M'))
      r->parameters = o.made = Block('M');
    if (selector == kSelectorStart) {
      r->outRect = Rect16{0, 0, 1, kWidth};
      r->outLoPlane = r->outHiPlane = 0;
    }
    if (selector == kSelectorContinue) r->outRect = Rect16{};
    if (selector == kSelectorFinish) {
      o.finished = true;
      o.atFinish = r->parameters;
      o.markAtFinish = r->parameters ? **r->parameters : 0;  // a freed block faults here
    }
    if (selector == failAt) {
      *result = -128;
      FreeParamsHandle(o.made);
      o.made = nullptr;
    }
  };
  o.run = FilterHostRun(&host, module, nullptr);
  o.after = host.record.parameters;
  return o;
}

TEST(HostParameters, AFailedRunLeavesTheBlockHandedInAndAGoodOneTheModules) {
  // Failures with nothing handed in: the field is empty again, also for
  // selector 5 after a failed continue.
  for (int16_t failAt : {kSelectorParameters, kSelectorStart, kSelectorContinue}) {
    SCOPED_TRACE(failAt);
    Outcome o = RunFrameLike(nullptr, failAt);
    EXPECT_EQ(o.run.result, -128);
    EXPECT_EQ(o.after, nullptr);
    EXPECT_EQ(o.run.replacedParameters, nullptr);
    EXPECT_EQ(o.finished, failAt == kSelectorContinue);
    EXPECT_EQ(o.atFinish, nullptr);
  }

  // Another effect's block, replaced for the run: back after a failure, and
  // readable by selector 5 and after the run.
  char** other = Block('O');
  Outcome failed = RunFrameLike(other, kSelectorContinue);
  EXPECT_EQ(failed.after, other);
  EXPECT_EQ(failed.atFinish, other);
  EXPECT_EQ(failed.markAtFinish, 'O');
  EXPECT_EQ(failed.run.replacedParameters, nullptr);
  EXPECT_EQ(**other, 'O');

  // After a good run the module's block stays, and the one it replaced is
  // handed back to the host to free.
  Outcome good = RunFrameLike(other, 0);
  EXPECT_EQ(good.run.result, 0);
  ASSERT_NE(good.made, nullptr);
  EXPECT_EQ(good.after, good.made);
  EXPECT_EQ(good.run.replacedParameters, other);
  FreeParamsHandle(other);
  FreeParamsHandle(good.made);
}

// The frame itself: Glass refuses a picture without a selection in its
// first call, after it has made the block of a fresh run.
TEST(HostParameters, GlassWithoutASelectionLeavesNoFreedBlockInTheRecord) {
  testing::ConfigFolder config;
  testing::MessageBoxRecorder boxes;
  HostImage image = ToHostImage(testing::TestPicture(kWidth, kHeight, PixelMode::kRGB),
                                PixelMode::kRGB);
  std::vector<uint8_t> record(size_t(ReliefRecordSize(kFilterGlass)), 0);
  const EffectHead head{kFilterGlass, kClassRelief};
  std::memcpy(record.data(), &head, sizeof head);
  for (bool handIn : {false, true}) {
    SCOPED_TRACE(handIn ? "handed a block" : "fresh");
    char** handed = handIn ? MakeParamsHandle(record) : nullptr;
    FilterHost host;
    host.settings.quiet = true;
    FilterHostInit(&host, &image, nullptr, Rect16{0, 0, kHeight, kWidth}, handed);
    intptr_t data = 0;
    FilterRunResult run = FilterHostRun(&host, EffectCaller(EffectModule{}, kFilterGlass), &data);
    EXPECT_NE(run.result, 0);
    EXPECT_EQ(host.record.parameters, handed);
    EXPECT_EQ(run.replacedParameters, nullptr);
    EXPECT_EQ(data, 0) << "the run's own block is gone too";
    if (handed) {
      EXPECT_EQ(std::vector<uint8_t>(*handed, *handed + record.size()), record);
      FreeParamsHandle(handed);
    }
  }
  ASSERT_EQ(boxes.boxes().size(), 2u);
  EXPECT_NE(boxes.boxes()[0].text.find("requires a mask"), std::string::npos);
}

}  // namespace
}  // namespace fancy
