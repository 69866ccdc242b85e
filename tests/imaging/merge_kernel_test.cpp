// The merge kernels against the mode table: formulas on every byte pair,
// coverage columns, the table's shape, and the promises every kernel keeps
// (count 0, same row in and out, colour family = image family of one colour).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "imaging/image_types.h"
#include "imaging/merge.h"
#include "merge_reference.h"

namespace fancy {
namespace {

using testing::RefChannel;
using testing::RefChannelCovered;
using testing::RefCoverage;
using testing::RefInk;
using testing::RefInkCovered;
using testing::RefPixel;
using Bytes = std::vector<uint8_t>;

class MergeKernels : public ::testing::Test {
 protected:
  void SetUp() override { ImagingInit(); }
  void TearDown() override { ImagingShutdown(); }
  std::mt19937 rng{20240607};

  uint8_t RandomByte() {
    // Ends of the range come up often: they are where formulas break.
    uint32_t r = rng();
    switch (r % 8) {
      case 0: return 0;
      case 1: return 255;
      default: return static_cast<uint8_t>(r >> 8);
    }
  }
  Bytes RandomBytes(size_t n) {
    Bytes b(n);
    for (auto& v : b) v = RandomByte();
    return b;
  }
};

struct Layout {
  int type;
  int bits;
  int bytes;  // a pixel
};
constexpr Layout kByteLayouts[] = {{1, 24, 3}, {3, 32, 4}, {5, 8, 1}, {99, 8, 1},
                                   {10, 8, 1}, {11, 24, 3}, {12, 48, 6}, {14, 16, 2}};

enum class Cell { kNull, kNoOp, kKernel };

Cell Classify(MergeKernel k) {
  return !k ? Cell::kNull : k == &NoOpMergeKernel ? Cell::kNoOp : Cell::kKernel;
}
Cell Classify(ColorMergeKernel k) {
  return !k ? Cell::kNull : k == &NoOpColorMergeKernel ? Cell::kNoOp : Cell::kKernel;
}

// Shape of a table by mode: K a kernel in every column, B column 0 the no-op
// and kernels in the others, C a kernel in column 0 only, N all no-ops, 0 all
// null.
template <class Row>
void ExpectShape(const Row* (*find)(int32_t, int32_t, int32_t), int type, int bits,
                 const char* shape) {
  for (int mode = 0; mode < 32; ++mode) {
    const Row* row = find(type, bits, mode);
    ASSERT_NE(row, nullptr) << type << " mode " << mode;
    Cell want0, wantRest;
    switch (shape[mode]) {
      case 'K': want0 = wantRest = Cell::kKernel; break;
      case 'B': want0 = Cell::kNoOp; wantRest = Cell::kKernel; break;
      case 'C': want0 = Cell::kKernel; wantRest = Cell::kNull; break;
      case 'N': want0 = wantRest = Cell::kNoOp; break;
      default: want0 = wantRest = Cell::kNull; break;
    }
    EXPECT_EQ(Classify(row->kernels[0]), want0) << "type " << type << " mode " << mode;
    for (int c = 1; c < 6; ++c)
      EXPECT_EQ(Classify(row->kernels[c]), wantRest) << "type " << type << " mode " << mode
                                                     << " column " << c;
  }
}

const MergeRow* FindChannel8(int32_t, int32_t, int32_t mode) { return FindChannelMergeRow(5, mode); }
const MergeRow* FindChannel16(int32_t, int32_t, int32_t mode) {
  return FindChannelMergeRow(12, mode);
}

TEST_F(MergeKernels, TablesHaveTheirShape) {
  //                     0         1         2         3
  //                     01234567890123456789012345678901
  const char* bgr =     "KKKKKKKKKKKKKKKKKKKKKNNNKKKBKKKK";
  const char* cmyk =    "KKKKKKKKKKKKKK0000KKKKNNKKKBKKKK";
  const char* grey =    "KKKKKKKKKKKKKKNNNNKNNNNNKKKBKKKK";
  const char* bits =    "KKKKKKKKKK0KK0NNNKKNNNNNKKK0KNKK";
  const char* lab =     "KKKKKKKKKKKKK0000KKKKNNNKKKBKKKK";
  const char* channel = "KKKKKKKKKKKKKKNNNNKNNNNNKKKBKNNN";
  for (auto find : {&FindMergeRow}) {
    ExpectShape<MergeRow>(find, 1, 24, bgr);
    ExpectShape<MergeRow>(find, 3, 32, cmyk);
    ExpectShape<MergeRow>(find, 5, 8, grey);
    ExpectShape<MergeRow>(find, 99, 8, grey);
    ExpectShape<MergeRow>(find, 6, 1, bits);
    ExpectShape<MergeRow>(find, 11, 24, lab);
    ExpectShape<MergeRow>(find, 10, 8, "C00000000000000000C000NN00000000");
    ExpectShape<MergeRow>(find, 12, 48, "K00000000000000000KKK0NN00000000");
    ExpectShape<MergeRow>(find, 14, 16, "K00000000000000000K000NN00000000");
  }
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 1, 24, bgr);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 3, 32, cmyk);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 5, 8, grey);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 99, 8, grey);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 6, 1, bits);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 11, 24, lab);
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 10, 8, "K00000000000000000K000NN00000000");
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 12, 48, "K00000000000000000NNNNNN00000000");
  ExpectShape<ColorMergeRow>(&FindColorMergeRow, 14, 16, "K000000000000000000000NN00000000");
  ExpectShape<MergeRow>(&FindChannel8, 0, 0, channel);
  ExpectShape<MergeRow>(&FindChannel16, 0, 0, channel);

  // Types 5 and 99 share rows; type 3's MultiplyInverse under bare opacity is
  // Multiply's kernel.
  EXPECT_EQ(FindMergeRow(5, 8, 9), FindMergeRow(99, 8, 9));
  EXPECT_EQ(FindMergeRow(3, 32, 26)->kernels[2], FindMergeRow(3, 32, 9)->kernels[2]);
  EXPECT_EQ(FindColorMergeRow(3, 32, 26)->kernels[2], FindColorMergeRow(3, 32, 9)->kernels[2]);

  // No tables for type 13, paletted images below 8 bits, unknown types or
  // modes outside 0..31.
  EXPECT_EQ(FindMergeRow(13, 48, 0), nullptr);
  EXPECT_EQ(FindColorMergeRow(13, 48, 0), nullptr);
  EXPECT_EQ(FindMergeRow(10, 4, 0), nullptr);
  EXPECT_EQ(FindMergeRow(10, 1, 0), nullptr);
  EXPECT_EQ(FindMergeRow(7, 8, 0), nullptr);
  EXPECT_EQ(FindMergeRow(1, 24, 32), nullptr);
  EXPECT_EQ(FindMergeRow(1, 24, -1), nullptr);
  EXPECT_EQ(FindChannelMergeRow(1, 32), nullptr);
}

// All 65,536 (d, s) byte pairs laid out as the bytes of a row of pixels.
struct PairRows {
  Bytes d, s;
  int count;
  explicit PairRows(int bytesPerPixel) {
    count = (65536 + bytesPerPixel - 1) / bytesPerPixel;
    d.assign(static_cast<size_t>(count) * bytesPerPixel, 0);
    s = d;
    for (int i = 0; i < 65536; ++i) {
      d[i] = static_cast<uint8_t>(i >> 8);
      s[i] = static_cast<uint8_t>(i);
    }
  }
};

// The channel formula of a type's mode, plain (m < 0) or under coverage m.
int ChannelRef(int type, int mode, int d, int s, int m, int column = -1) {
  // Type 3's MultiplyInverse under a bare opacity is its Multiply.
  if (type == 3 && mode == 26 && column == 2) mode = 9;
  if (type == 3) return m < 0 ? RefInk(mode, d, s) : RefInkCovered(mode, d, s, m);
  if (type == 5) {
    if (mode == 13) mode = 9;
    if (mode == 18) mode = 0;
    if (mode == 11 || mode == 12) {
      int t = m < 0 ? s : RefChannelCovered(0, d, s, m);
      return mode == 11 ? std::max(d, t) : std::min(d, t);
    }
  }
  return m < 0 ? RefChannel(mode, d, s) : RefChannelCovered(mode, d, s, m);
}

std::vector<int> ChannelModes(int type) {
  std::vector<int> modes = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 24, 25, 26, 27, 28, 29, 30, 31};
  if (type == 5) modes.insert(modes.end(), {11, 12, 13, 18});
  if (type == 11) modes.erase(std::find(modes.begin(), modes.end(), 9));   // about 128
  if (type == 11) modes.erase(std::find(modes.begin(), modes.end(), 28));  // the same
  return modes;
}

TEST_F(MergeKernels, ChannelModesFollowTheirFormulaOnEveryBytePair) {
  const Layout layouts[] = {{1, 24, 3}, {3, 32, 4}, {5, 8, 1}, {11, 24, 3}};
  for (const Layout& layout : layouts) {
    PairRows rows(layout.bytes);
    const size_t pixels = static_cast<size_t>(rows.count);
    // Coverage: random masks and one opacity per run, with the ends present.
    Bytes mask1 = RandomBytes(pixels), mask2 = RandomBytes(pixels);
    for (int mode : ChannelModes(layout.type)) {
      const MergeRow* row = FindMergeRow(layout.type, layout.bits, mode);
      ASSERT_NE(row, nullptr);
      for (int column = 0; column < 6; ++column) {
        if (mode == 27 && column == 0) continue;  // the no-op
        Coverage cov{mask1.data(), mask2.data(), static_cast<uint8_t>(column == 2 ? 77 : 200)};
        Bytes d = rows.d;
        row->kernels[column](nullptr, rows.count, d.data(), rows.s.data(), &cov);
        for (size_t i = 0; i < 65536; ++i) {
          size_t p = i / layout.bytes;
          int m = column == 0 ? -1 : RefCoverage(column, mask1[p], mask2[p], cov.opacity);
          int want = ChannelRef(layout.type, mode, rows.d[i], rows.s[i], m, column);
          ASSERT_EQ(d[i], want) << "type " << layout.type << " mode " << mode << " column "
                                << column << " d " << int(rows.d[i]) << " s " << int(rows.s[i])
                                << " m " << m;
        }
      }
    }
  }
}

TEST_F(MergeKernels, WholePixelModesFollowTheirRule) {
  struct Case {
    Layout layout;
    std::vector<int> modes;
  } cases[] = {
      {{1, 24, 3}, {11, 12, 13, 14, 15, 16, 17, 18, 19, 20}},
      {{3, 32, 4}, {11, 12, 13, 18, 19, 20, 21}},
      {{11, 24, 3}, {9, 11, 12, 17, 18, 19, 20, 28}},
  };
  const int count = 6000;
  for (const Case& c : cases) {
    const int n = c.layout.bytes;
    Bytes dst = RandomBytes(static_cast<size_t>(count) * n), src = RandomBytes(dst.size());
    // Some equal pixels, and some that differ in one byte only.
    for (int i = 0; i < 400; ++i) std::memcpy(&src[i * n], &dst[i * n], n);
    for (int i = 400; i < 800; ++i) src[i * n] = dst[i * n + 1 % n];
    Bytes mask1 = RandomBytes(count), mask2 = RandomBytes(count);
    for (int mode : c.modes) {
      const MergeRow* row = FindMergeRow(c.layout.type, c.layout.bits, mode);
      for (int column = 0; column < 6; ++column) {
        Coverage cov{mask1.data(), mask2.data(), 140};
        Bytes d = dst;
        row->kernels[column](nullptr, count, d.data(), src.data(), &cov);
        for (int i = 0; i < count; ++i) {
          uint8_t want[4];
          std::memcpy(want, &dst[i * n], n);
          int m = column == 0 ? -1 : RefCoverage(column, mask1[i], mask2[i], cov.opacity);
          RefPixel(c.layout.type, mode, want, &src[i * n], m);
          ASSERT_EQ(0, std::memcmp(want, &d[i * n], n))
              << "type " << c.layout.type << " mode " << mode << " column " << column
              << " pixel " << i;
        }
      }
    }
  }
}

TEST_F(MergeKernels, SixteenBitChannelsBlendByTheWideDivision) {
  const int count = 3000;
  for (const Layout& layout : {Layout{12, 48, 6}, Layout{14, 16, 2}}) {
    Bytes dst = RandomBytes(static_cast<size_t>(count) * layout.bytes), src = RandomBytes(dst.size());
    Bytes mask1 = RandomBytes(count), mask2 = RandomBytes(count);
    for (int mode : {0, 18, 19, 20}) {
      if (layout.type == 14 && mode > 18) continue;
      const MergeRow* row = FindMergeRow(layout.type, layout.bits, mode);
      int first = mode == 0 ? 0 : mode - 18;
      int last = mode == 0 ? layout.bytes / 2 - 1 : first;
      for (int column = 0; column < 6; ++column) {
        Coverage cov{mask1.data(), mask2.data(), 99};
        Bytes d = dst;
        row->kernels[column](nullptr, count, d.data(), src.data(), &cov);
        for (int i = 0; i < count; ++i) {
          int m = column == 0 ? 255 : RefCoverage(column, mask1[i], mask2[i], cov.opacity);
          for (int k = 0; k < layout.bytes / 2; ++k) {
            size_t at = static_cast<size_t>(i) * layout.bytes + 2 * k;
            uint32_t a = src[at] | src[at + 1] << 8, b = dst[at] | dst[at + 1] << 8;
            uint32_t want = k < first || k > last ? b : WideDivide(a * m + b * (255 - m));
            ASSERT_EQ(d[at] | d[at + 1] << 8, static_cast<int>(want))
                << "type " << layout.type << " mode " << mode << " column " << column;
          }
        }
      }
    }
  }
}

// Every kernel of every byte table: count 0 leaves the row alone; full
// coverage gives column 0's result and none leaves d; the same row may be
// source and destination; a colour kernel equals the image kernel over a row
// of that colour.
TEST_F(MergeKernels, EveryKernelKeepsTheCommonPromises) {
  const int count = 700;  // more than one round of worked-out coverage
  const Bytes full(count, 255), none(count, 0);
  for (const Layout& layout : kByteLayouts) {
    const size_t bytes = static_cast<size_t>(count) * layout.bytes;
    for (int mode = 0; mode < 32; ++mode) {
      const MergeRow* row = FindMergeRow(layout.type, layout.bits, mode);
      const ColorMergeRow* colorRow = FindColorMergeRow(layout.type, layout.bits, mode);
      for (int column = 0; column < 6; ++column) {
        SCOPED_TRACE(::testing::Message() << "type " << layout.type << " mode " << mode
                                          << " column " << column);
        Bytes dst = RandomBytes(bytes), src = RandomBytes(bytes);
        Bytes mask1 = RandomBytes(count), mask2 = RandomBytes(count);
        Coverage cov{mask1.data(), mask2.data(), static_cast<uint8_t>(rng() % 254 + 1)};
        MergeKernel k = row->kernels[column];
        ColorFillContext fill{};
        std::memcpy(fill.pixel, src.data(), layout.bytes);
        ColorMergeKernel ck = colorRow->kernels[column];

        if (k) {
          Bytes d = dst;
          k(nullptr, 0, d.data(), src.data(), &cov);
          EXPECT_EQ(d, dst);
          Bytes same = src, apart = dst;
          same = src;
          Bytes srcCopy = src;
          k(nullptr, count, same.data(), same.data(), &cov);
          Bytes expect = src;
          k(nullptr, count, expect.data(), srcCopy.data(), &cov);
          EXPECT_EQ(same, expect) << "in place";
        }
        if (ck) {
          Bytes d = dst;
          ck(&fill, 0, d.data(), &cov);
          EXPECT_EQ(d, dst);
        }
        bool inkOddity = layout.type == 3 && mode == 26 && column == 2;
        if (Classify(k) == Cell::kKernel && column > 0 && !inkOddity) {
          Coverage fullCov{full.data(), full.data(), 255};
          Coverage noneCov{none.data(), column == 3 ? full.data() : none.data(),
                           static_cast<uint8_t>(column == 2 ? 0 : 255)};
          Bytes plain = dst, covered = dst, clear = dst;
          if (row->kernels[0] != &NoOpMergeKernel)
            row->kernels[0](nullptr, count, plain.data(), src.data(), nullptr);
          k(nullptr, count, covered.data(), src.data(), &fullCov);
          EXPECT_EQ(covered, plain) << "full coverage";
          k(nullptr, count, clear.data(), src.data(), &noneCov);
          bool hueMerge = layout.type == 1 && mode >= 14 && mode <= 17;
          if (mode == 27) {
            EXPECT_EQ(clear, src) << "behind: the source shows under no coverage";
          } else if (hueMerge && mode != 14) {
            Bytes again = dst;  // the colour of d taken apart and put back
            row->kernels[0](nullptr, count, again.data(), dst.data(), nullptr);
            EXPECT_EQ(clear, again);
          } else if (!hueMerge) {
            EXPECT_EQ(clear, dst) << "no coverage";
          }
        }

        // Paletted colour kernels under coverage have no image twin; they
        // blend index bytes as grey ones.
        MergeKernel twin = k;
        if (layout.type == 10 && !k && Classify(ck) == Cell::kKernel)
          twin = FindMergeRow(5, 8, mode)->kernels[column];
        bool colourDiffers = layout.type == 11 && mode == 12;  // both test "lighter"
        if (Classify(ck) == Cell::kKernel && twin && !colourDiffers) {
          Bytes repeated(bytes);
          for (int i = 0; i < count; ++i)
            std::memcpy(&repeated[static_cast<size_t>(i) * layout.bytes], fill.pixel, layout.bytes);
          Bytes viaImage = dst, viaColour = dst;
          twin(nullptr, count, viaImage.data(), repeated.data(), &cov);
          ck(&fill, count, viaColour.data(), &cov);
          EXPECT_EQ(viaColour, viaImage) << "colour family";
        }
      }
    }
  }
}

TEST_F(MergeKernels, LabColourFamilyTakesTheLighterPixelInBothChoiceModes) {
  ColorFillContext fill{{200, 10, 250}, 0};
  uint8_t darker[3] = {100, 128, 128}, lighter[3] = {230, 128, 128};
  Coverage cov{nullptr, nullptr, 255};
  for (int mode : {11, 12}) {
    uint8_t a[3], b[3];
    std::memcpy(a, darker, 3);
    std::memcpy(b, lighter, 3);
    FindColorMergeRow(11, 24, mode)->kernels[0](&fill, 1, a, &cov);
    FindColorMergeRow(11, 24, mode)->kernels[2](&fill, 1, b, &cov);
    EXPECT_EQ(0, std::memcmp(a, fill.pixel, 3)) << mode;
    EXPECT_EQ(0, std::memcmp(b, lighter, 3)) << mode;
  }
}

TEST_F(MergeKernels, InvertDestNeedsNoSourceRow) {
  for (const Layout& layout : {Layout{1, 24, 3}, Layout{3, 32, 4}, Layout{5, 8, 1}, Layout{11, 24, 3}}) {
    Bytes d = {0, 1, 128, 255};
    d.resize(static_cast<size_t>(layout.bytes) * 4, 7);
    Bytes want = d;
    for (auto& v : want) v = static_cast<uint8_t>(255 - v);
    FindMergeRow(layout.type, layout.bits, 5)->kernels[0](nullptr, 4, d.data(), nullptr, nullptr);
    EXPECT_EQ(d, want) << layout.type;
  }
  uint8_t bits = 0x0F;
  FindMergeRow(6, 1, 5)->kernels[0](nullptr, 8, &bits, nullptr, nullptr);
  EXPECT_EQ(bits, 0xF0);
}

// Bits: each pixel of the result is the mode's bit function, where coverage
// is not 0, at any starting bit of source and destination.
TEST_F(MergeKernels, BitKernelsWorkPixelByPixelAtAnyBitOffset) {
  auto bitAt = [](const Bytes& b, int i) { return (b[i >> 3] >> (7 - (i & 7))) & 1; };
  auto op = [](int mode, int d, int s) {
    switch (mode) {
      case 0: case 17: case 18: case 30: case 31: return s;
      case 1: case 8: case 9: case 12: return d & s;
      case 2: case 7: case 11: case 28: return d | s;
      case 3: case 24: return d ^ s;
      case 4: case 25: case 26: return d & (s ^ 1);
      case 5: return d ^ 1;
      default: return s ^ 1;
    }
  };
  const int count = 300;
  for (int mode : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 17, 18, 24, 25, 26, 28, 30, 31}) {
    for (int column = 0; column < 6; ++column) {
      for (int trial = 0; trial < 6; ++trial) {
        BitMergeContext ctx{static_cast<int32_t>(rng() % 16), static_cast<int32_t>(rng() % 16)};
        if (trial == 0) ctx = {0, 0};
        Bytes src = RandomBytes(48), dst = RandomBytes(48), mask1 = RandomBytes(count),
              mask2 = RandomBytes(count);
        Coverage cov{mask1.data(), mask2.data(), static_cast<uint8_t>(trial == 1 ? 0 : 9)};
        Bytes d = dst;
        FindMergeRow(6, 1, mode)->kernels[column](&ctx, count, d.data(), src.data(), &cov);
        ColorFillContext fill{{static_cast<uint8_t>(trial & 1)}, ctx.destBit};
        Bytes f = dst;
        FindColorMergeRow(6, 1, mode)->kernels[column](&fill, count, f.data(), &cov);
        for (int i = 0; i < 48 * 8; ++i) {
          int p = i - ctx.destBit;
          bool inRun = p >= 0 && p < count;
          int m = !inRun || column == 0 ? 255 : RefCoverage(column, mask1[p], mask2[p], cov.opacity);
          int old = bitAt(dst, i);
          int want = inRun && m ? op(mode, old, bitAt(src, ctx.sourceBit + p)) : old;
          int wantFill = inRun && m ? op(mode, old, trial & 1) : old;
          ASSERT_EQ(bitAt(d, i), want) << "mode " << mode << " column " << column << " bit " << i;
          ASSERT_EQ(bitAt(f, i), wantFill) << "mode " << mode << " column " << column;
        }
      }
    }
  }
}

TEST_F(MergeKernels, ChannelTablesMergeOneChannelWithStrides) {
  const int count = 500;
  for (int sourceType : {1, 12}) {
    const int sourceStride = sourceType == 12 ? 6 : 3, destStride = 4;
    Bytes src = RandomBytes(static_cast<size_t>(count) * sourceStride);
    Bytes dst = RandomBytes(static_cast<size_t>(count) * destStride);
    Bytes mask1 = RandomBytes(count), mask2 = RandomBytes(count);
    ChannelMergeContext ctx{sourceStride, destStride};
    for (int mode = 0; mode < 32; ++mode) {
      const MergeRow* row = FindChannelMergeRow(sourceType, mode);
      for (int column = 0; column < 6; ++column) {
        if (Classify(row->kernels[column]) != Cell::kKernel) continue;
        Coverage cov{mask1.data(), mask2.data(), 31};
        Bytes d = dst;
        row->kernels[column](&ctx, count, d.data(), src.data(), &cov);
        for (int i = 0; i < count; ++i) {
          int s = src[static_cast<size_t>(i) * sourceStride + (sourceType == 12 ? 1 : 0)];
          int old = dst[static_cast<size_t>(i) * destStride];
          int m = column == 0 ? -1 : RefCoverage(column, mask1[i], mask2[i], cov.opacity);
          ASSERT_EQ(d[static_cast<size_t>(i) * destStride], ChannelRef(5, mode, old, s, m))
              << "mode " << mode << " column " << column;
          for (int k = 1; k < destStride; ++k)  // the other bytes stay
            ASSERT_EQ(d[static_cast<size_t>(i) * destStride + k], dst[static_cast<size_t>(i) * destStride + k]);
        }
      }
    }
  }
}

}  // namespace
}  // namespace fancy
