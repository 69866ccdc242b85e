#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "colour/clr_convert.h"
#include "colour/hex_table.h"
#include "colour_test_util.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::MessageBoxRecorder;

struct Record {
  uint32_t id;
  uint32_t inks[6];
  int32_t lab[3];
  std::string name;
};

void PutU16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}
void PutU32(std::vector<uint8_t>& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

std::vector<uint8_t> HexFile(const std::vector<Record>& records, uint32_t count = 2023,
                             uint32_t magic = 0xDDCC) {
  std::vector<uint8_t> out;
  PutU16(out, magic);
  PutU16(out, count);
  for (const Record& r : records) {
    PutU32(out, r.id);
    for (uint32_t ink : r.inks) PutU32(out, ink);
    for (int32_t v : r.lab) PutU32(out, static_cast<uint32_t>(v));
    out.push_back(static_cast<uint8_t>(r.name.size()));
    out.insert(out.end(), r.name.begin(), r.name.end());
  }
  return out;
}

// 2023 records with ids 1..2023 in reverse, except that id 1000 is missing
// and id 5 appears twice: "Name 5 early", then "Name 5", which wins.
std::vector<Record> SampleRecords() {
  std::vector<Record> records;
  for (uint32_t i = 0; i < 2023; ++i) {
    Record r{};
    r.id = 2023 - i;
    bool relabelled = r.id == 1000;
    if (relabelled) r.id = 5;
    for (int k = 0; k < 6; ++k) r.inks[k] = (r.id + static_cast<uint32_t>(k)) % 101;
    r.lab[0] = static_cast<int32_t>(r.id % 256);
    r.lab[1] = -static_cast<int32_t>(r.id % 100);
    r.lab[2] = static_cast<int32_t>(r.id % 100);
    r.name = "Name " + std::to_string(r.id) + (relabelled ? " early" : "");
    records.push_back(r);
  }
  return records;
}

std::string WriteFile(const fancy::testing::TempDir& dir, const std::vector<uint8_t>& bytes) {
  return dir.Write("pantone.hex", std::string(bytes.begin(), bytes.end()));
}

std::string Name(int id, bool hexWord) {
  char out[300];
  HexName(id, out, sizeof out, hexWord);
  return out;
}

void ExpectBuiltInOnly() {
  EXPECT_EQ(Name(1, false), "PANTONE Hex. Yellow CV");
  EXPECT_EQ(Name(1, true), "Hexachrome Yellow");
  CLRColor inks;
  ASSERT_EQ(HexColorForId(1, 100, &inks), 1);
  const uint8_t expected[6] = {100, 0, 0, 0, 0, 0};
  EXPECT_EQ(0, std::memcmp(CLRBytes(&inks) + 6, expected, 6));
  CLRColor at;
  EXPECT_EQ(HexAt(0, &at), 1);
  EXPECT_EQ(HexAt(1, &at), 0);
  for (int id = 2; id < kHexIdCount; ++id) ASSERT_EQ(HexColorForId(id, 100, &inks), 0);
}

class HexTableTest : public ::testing::Test {
 protected:
  void SetUp() override { testing::ReleaseColourTables(); }
  void TearDown() override { testing::ReleaseColourTables(); }
  fancy::testing::TempDir dir;
};

TEST_F(HexTableTest, ReadsEveryRecordAndAnswersQueries) {
  std::vector<Record> records = SampleRecords();
  records[2023 - 3].name = "";                  // id 3, no name
  records[2023 - 6].name = "Hexa Green";        // a process ink
  records[2023 - 7].name = "Hexa Not Process";  // id 7 is not one
  std::vector<uint8_t> bytes = HexFile(records);
  bytes.resize(bytes.size() + 5000, 0xEE);  // what follows the records is not read
  std::string path = WriteFile(dir, bytes);
  MessageBoxRecorder boxes;
  ASSERT_EQ(HexTableLoadFile(path.c_str()), 1);
  ASSERT_EQ(HexTableLoad(), 1);  // counted: the data directory is not read
  EXPECT_EQ(HexTableLoadCount(), 2);
  HexTableRelease();
  EXPECT_TRUE(boxes.boxes().empty());

  EXPECT_EQ(Name(0, false), "BLACK");
  EXPECT_EQ(Name(1000, false), "unknown PANTONE color 1000");
  EXPECT_EQ(Name(3, false), "PANTONE 3 CV");
  EXPECT_EQ(Name(6, true), "Hexachrome Green");
  EXPECT_EQ(Name(6, false), "PANTONE Hexa Green CV");
  EXPECT_EQ(Name(7, true), "PANTONE Hexa Not Process CV");
  EXPECT_EQ(Name(5, false), "PANTONE Name 5 CV");
  EXPECT_EQ(Name(2024, false), "unknown PANTONE color 2024");

  CLRColor inks;
  ASSERT_EQ(HexColorForId(100, 100, &inks), 1);
  EXPECT_EQ(inks.model, kCLRHexProcess);
  EXPECT_EQ(CLRPaletteWord(&inks), 5);
  for (int k = 0; k < 6; ++k) EXPECT_EQ(CLRBytes(&inks)[6 + k], (100 + k) % 101);
  // The tint works in byte arithmetic and wraps.
  ASSERT_EQ(HexColorForId(100, 300, &inks), 1);
  EXPECT_EQ(CLRBytes(&inks)[6], static_cast<uint8_t>(300));

  // RGB through the stored Lab, tinted toward white.
  CLRColor rgb, viaLab, lab = testing::MakeColor(kCLRLab);
  lab.value8[0] = 200;
  ASSERT_EQ(HexRGBForId(200, 100, &rgb), 1);
  CLRConvert(&viaLab, kCLRRGB255, &lab);
  EXPECT_EQ(testing::RGBOf(rgb), testing::RGBOf(viaLab));
  ASSERT_EQ(HexRGBForId(200, 0, &rgb), 1);
  EXPECT_EQ(testing::RGBOf(rgb), (testing::RGB{255, 255, 255}));
  EXPECT_EQ(HexRGBForId(1000, 100, &rgb), 0);

  CLRColor at;
  ASSERT_EQ(HexAt(0, &at), 1);
  EXPECT_EQ(at.model, kCLRHexSpot);
  EXPECT_EQ(CLRPaletteWord(&at), kCLRPalHexachrome);
  EXPECT_EQ(CLRGetU16(&at, 8), 2023);
  EXPECT_EQ(CLRGetU16(&at, 10), 100);
  ASSERT_EQ(HexAt(2022, &at), 1);
  EXPECT_EQ(CLRGetU16(&at, 8), 1);
  EXPECT_EQ(HexAt(2023, &at), 0);
}

TEST_F(HexTableTest, LongAndUnterminatedNames) {
  std::vector<Record> records = SampleRecords();
  for (Record& r : records) r.name = std::string(255, static_cast<char>('a' + r.id % 26));
  records[0].name = std::string("cut\0here", 8);  // id 2023
  std::string path = WriteFile(dir, HexFile(records));
  ASSERT_EQ(HexTableLoadFile(path.c_str()), 1);
  EXPECT_EQ(Name(2023, false), "PANTONE cut CV");
  EXPECT_EQ(Name(26, false), "PANTONE " + std::string(255, 'a') + " CV");
  char small[9];
  HexName(26, small, sizeof small, false);
  EXPECT_STREQ(small, "PANTONE ");
}

TEST_F(HexTableTest, DamagedFilesFallBackToTheBuiltInInk) {
  std::vector<uint8_t> good = HexFile(SampleRecords());
  std::vector<std::vector<uint8_t>> damaged;
  damaged.push_back(HexFile(SampleRecords(), 2022));
  damaged.push_back(HexFile(SampleRecords(), 2023, 0xCCDD));
  damaged.push_back({0xCC});
  damaged.push_back({});
  for (size_t cut : {size_t{4}, size_t{30}, size_t{45}, good.size() / 2, good.size() - 1})
    damaged.emplace_back(good.begin(), good.begin() + static_cast<ptrdiff_t>(cut));
  for (uint32_t id : {2024u, 0xFFFFFFFFu, 0x10001u}) {
    std::vector<Record> records = SampleRecords();
    records[1500].id = id;
    damaged.push_back(HexFile(records));
  }
  std::vector<uint8_t> longName = good;
  longName[good.size() - 1 - std::string("Name 1").size()] = 200;  // the last name runs past the end
  damaged.push_back(longName);

  for (size_t i = 0; i < damaged.size(); ++i) {
    SCOPED_TRACE(i);
    std::string path = WriteFile(dir, damaged[i]);
    {
      MessageBoxRecorder boxes;
      ASSERT_EQ(HexTableLoadFile(path.c_str()), 1);
      ASSERT_EQ(boxes.boxes().size(), 1u);
      EXPECT_EQ(boxes.boxes()[0].text, "Error Reading " + path + " file.");
      EXPECT_EQ(boxes.boxes()[0].caption, "Tavin Color Manager");
      EXPECT_EQ(boxes.boxes()[0].flags, 8240u);
    }
    ExpectBuiltInOnly();
    testing::ReleaseColourTables();
  }

  // A missing file is an opening error; bytes from memory fall back quietly.
  std::string missing = dir.File("none.hex");
  {
    MessageBoxRecorder boxes;
    HexTableLoadFile(missing.c_str());
    ASSERT_EQ(boxes.boxes().size(), 1u);
    EXPECT_EQ(boxes.boxes()[0].text, "Error Opening " + missing + " file.");
  }
  ExpectBuiltInOnly();
  testing::ReleaseColourTables();
  {
    MessageBoxRecorder boxes;
    HexTableLoadBytes(damaged[0].data(), damaged[0].size());
    EXPECT_TRUE(boxes.boxes().empty());
  }
  ExpectBuiltInOnly();
}

}  // namespace
}  // namespace fancy
