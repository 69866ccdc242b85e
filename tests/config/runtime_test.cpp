// Movable blocks, the temporary strings, conditions and message boxes.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "config/condition.h"
#include "config/memblock.h"
#include "config/strings.h"
#include "ui/message_box.h"

namespace fancy {
namespace {

TEST(MemBlock, AllocLockResizeFree) {
  MemHandle empty = MemBlockAlloc(0);
  ASSERT_NE(empty, nullptr);
  EXPECT_NE(MemBlockLock(empty), nullptr);
  MemBlockUnlock(empty);
  MemBlockFree(empty);

  EXPECT_EQ(MemBlockLock(nullptr), nullptr);
  EXPECT_EQ(MemBlockResize(nullptr, 10), nullptr);
  MemBlockFree(nullptr);

  MemHandle block = MemBlockAlloc(1000);
  ASSERT_NE(block, nullptr);
  auto* bytes = static_cast<uint8_t*>(MemBlockLock(block));
  EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + 1000), std::vector<uint8_t>(1000, 0));
  for (int i = 0; i < 1000; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + 1);

  // The handle stays; the contents move with the address; grown bytes are zero.
  ASSERT_EQ(MemBlockResize(block, 1 << 20), block);
  bytes = static_cast<uint8_t*>(MemBlockLock(block));
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(bytes[i], static_cast<uint8_t>(i * 7 + 1));
  for (int i = 1000; i < (1 << 20); i += 4099) ASSERT_EQ(bytes[i], 0);
  ASSERT_EQ(MemBlockResize(block, 10), block);
  bytes = static_cast<uint8_t*>(MemBlockLock(block));
  EXPECT_EQ(bytes[9], static_cast<uint8_t>(9 * 7 + 1));
  ASSERT_EQ(MemBlockResize(block, 0), block);
  EXPECT_NE(MemBlockLock(block), nullptr);
  ASSERT_EQ(MemBlockResize(block, 20), block);
  bytes = static_cast<uint8_t*>(MemBlockLock(block));
  EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + 20), std::vector<uint8_t>(20, 0));

  // A request no memory can meet fails, and the block is as it was.
  bytes[0] = 42;
  EXPECT_EQ(MemBlockResize(block, SIZE_MAX), nullptr);
  EXPECT_EQ(static_cast<uint8_t*>(MemBlockLock(block))[0], 42);
  EXPECT_EQ(MemBlockAlloc(SIZE_MAX), nullptr);
  EXPECT_EQ(MemBlockAlloc(SIZE_MAX / 2), nullptr);
  MemBlockFree(block);
}

TEST(TempString, RotatesCutsAndHoldsAFew) {
  EXPECT_STREQ(LoadTempString(0xFFFFFFu), "");
  EXPECT_STREQ(LoadTempString(20777), FindString(20777));
  EXPECT_STREQ(CopyTempString(nullptr), "");

  // Cut to 255 characters.
  std::string longText(300, 'L');
  EXPECT_EQ(std::string(CopyTempString(longText.c_str())), std::string(255, 'L'));

  // Each full string takes 256 bytes of the 2304: nine fit, the tenth starts
  // again at the beginning. Find the restart first, wherever the buffer stood.
  std::string text(255, 'a');
  const char* previous = CopyTempString(text.c_str());
  const char* start = nullptr;
  for (int i = 0; i < 10 && !start; ++i) {
    const char* p = CopyTempString(text.c_str());
    if (p < previous) start = p;
    previous = p;
  }
  ASSERT_NE(start, nullptr);
  std::vector<const char*> held = {start};
  for (int i = 1; i < 9; ++i) {
    std::string distinct(255, static_cast<char>('b' + i));
    const char* p = CopyTempString(distinct.c_str());
    EXPECT_EQ(p, start + 256 * i);
    held.push_back(p);
  }
  // All nine are intact at once; the next one takes the first one's place.
  EXPECT_EQ(std::string(held[0]), text);
  for (int i = 1; i < 9; ++i)
    EXPECT_EQ(std::string(held[i]), std::string(255, static_cast<char>('b' + i)));
  EXPECT_EQ(CopyTempString("next"), start);

  // Short strings pack one after another.
  const char* a = CopyTempString("ab");
  const char* b = CopyTempString("cde");
  EXPECT_EQ(b, a + 3);
  EXPECT_STREQ(a, "ab");

  // A temporary string copied again is safe even where the copies overlap.
  for (int i = 0; i < 20; ++i) {
    const char* again = CopyTempString(CopyTempString(longText.c_str()));
    ASSERT_EQ(std::string(again), std::string(255, 'L'));
  }
}

struct Box {
  std::string text, caption;
  uint32_t flags;
};

// Every subsystem adds its own rows; two rows with one id would show the
// wrong text somewhere.
TEST(StringTable, IdsAreUnique) { EXPECT_EQ(StringTableDuplicateId(), 0u); }

TEST(Condition, CaptionAndTextFollowTheTemplate) {
  std::vector<Box> boxes;
  SetMessageBoxHandler([&](void*, const char* text, const char* caption, uint32_t flags) {
    boxes.push_back({text, caption, flags});
    return kIdOk;
  });
  ReportCondition(kConditionNotObtained, "clrpal.cpp", 42, "Tavin Color Manager", 1);
  ReportCondition(kConditionUnknownUnit, "C:\\src\\Units.Cpp", 7, "Units", 0);
  ReportCondition(kConditionNotLocked, "src/colour/catalogue.cpp", 12345, "X", 1);
  ReportCondition(kConditionColorContext, "noext", 0, nullptr, 0);
  SetMessageBoxHandler(nullptr);

  ASSERT_EQ(boxes.size(), 4u);
  EXPECT_EQ(boxes[0].caption, "Tavin Color Manager  Condition #1000-CLRPAL-0042");
  EXPECT_EQ(boxes[0].text,
            "A problem occurred accessing memory.  Please refer to the Technical Support Help.");
  EXPECT_EQ(boxes[1].caption, "Units  Condition #5002-UNITS-0007");
  EXPECT_EQ(boxes[1].text,
            "Unexpected condition encountered.  Please refer to the Technical Support Help.");
  EXPECT_EQ(boxes[2].caption, "X  Condition #1001-CATALOGUE-12345");
  EXPECT_EQ(boxes[3].caption, "  Condition #5000-NOEXT-0000");
  for (const Box& box : boxes) EXPECT_EQ(box.flags & 0xF, kMbOk);
}

TEST(MessageBox, DefaultAnswersOnStandardError) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(ShowMessageBox(nullptr, "Some text.", "Caption", kMbOk | kMbIconHand), kIdOk);
  std::string out = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(out, "[message box] Caption: Some text.\n");

  ::testing::internal::CaptureStderr();
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbYesNo), kIdYes);
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbYesNo | kMbDefButton2), kIdNo);
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbYesNoCancel | 0x200), kIdCancel);
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbOkCancel | kMbDefButton2), kIdCancel);
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbOkCancel | kMbIconQuestion), kIdOk);
  EXPECT_EQ(ShowMessageBox(nullptr, nullptr, nullptr, kMbOk), kIdOk);
  ::testing::internal::GetCapturedStderr();

  // An installed handler answers instead, and may replace itself meanwhile.
  int calls = 0;
  SetMessageBoxHandler([&](void*, const char*, const char*, uint32_t) {
    ++calls;
    SetMessageBoxHandler(nullptr);
    return kIdNo;
  });
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbYesNo), kIdNo);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(ShowMessageBox(nullptr, "q", "c", kMbYesNo), kIdYes);
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace fancy
