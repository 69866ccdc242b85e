// Little-endian fields: the low byte comes first, bytes with the top bit set
// are not sign-extended, and what is stored or appended reads back the same.
#include <gtest/gtest.h>

#include <vector>

#include "platform/byte_order.h"

namespace fancy {
namespace {

TEST(ByteOrder, FieldsAreLowByteFirstAndReadBackWhole) {
  const uint8_t bytes[4] = {0x01, 0x80, 0xFE, 0xFF};
  EXPECT_EQ(LoadLE16(bytes), 0x8001u);
  EXPECT_EQ(LoadLE16(bytes + 2), 0xFFFEu);
  EXPECT_EQ(LoadLE32(bytes), 0xFFFE8001u);

  for (uint32_t value : {0u, 0x12345678u, 0x80000000u, 0xFFFFFFFFu, 0x00FF00FFu}) {
    uint8_t stored[6] = {0xAA, 0, 0, 0, 0, 0xAA};
    StoreLE32(stored + 1, value);
    EXPECT_EQ(LoadLE32(stored + 1), value);
    EXPECT_EQ(stored[0], 0xAA) << "nothing written before the field";
    EXPECT_EQ(stored[5], 0xAA) << "nothing written after the field";

    std::vector<uint8_t> appended = {0xAA};
    AppendLE32(appended, value);
    AppendLE16(appended, value);
    ASSERT_EQ(appended.size(), 7u);
    EXPECT_EQ(LoadLE32(appended.data() + 1), value);
    EXPECT_EQ(LoadLE16(appended.data() + 5), value & 0xFFFF) << "the high half is dropped";

    StoreLE16(stored + 1, value);
    EXPECT_EQ(LoadLE16(stored + 1), value & 0xFFFF);
  }
}

}  // namespace
}  // namespace fancy
