// Feathering by bands, for the groups whose cell is a rectangle (Pm, Pg,
// P2, Pgg, Pmg) or a square (P4). Within F = feather pixels of an edge a
// pixel is mixed with its partner: the picture pixel that lies where the
// tile shows the copy across that edge, read from the picture's margin.
// If the copy across an edge is the cell moved by the group element g,
// the partner of p is g^-1(p); for p at distance i from the edge it lies
// i + 1 pixels beyond the opposite side of g^-1's copy of that edge.
//
// A pixel at distance i = 0 .. F-1 from one edge becomes (a in + b
// partner) >> 16 with a = (F + 1 + i) / (2F + 1) and b = (F - i) / (2F +
// 1) in 16.16 (FixedDiv). Where both its row distance i and its column
// distance j are below F, four pixels are mixed with wr = (F + 1 + i) / 2F
// and wc = (F + 1 + j) / 2F: wr wc in + wr (1 - wc) column partner + (1 -
// wr) wc row partner + (1 - wr)(1 - wc) diagonal partner, the last read
// from the copy across the corner. At i = j = F-1 the weight of `in` is 1,
// so corners meet the interior without a step, while bands meet it at 2F /
// (2F + 1): that mismatch is the effect's.
//
// Partners, (row, column) in cell coordinates, for a pixel (r, c) at
// distance i from the edge named (H, W the cell's height and width):
//
//   group  top row i        bottom row        left column       right column
//   Pm     (H+i, c)         (-1-i, c)         (r, -1-i)         (r, W+i)
//   Pg     (H+i, c)         (-1-i, c)         (H-1-r, W+i)      (H-1-r, -1-i)
//   P2     (H+i, c)         (-1-i, c)         (H-1-r, -1-i)     (H-1-r, W+i)
//   Pgg    (H+i, W-1-c)     (-1-i, W-1-c)     (H-1-r, W+i)      (H-1-r, -1-i)
//   Pmg    (H+i, c)         (-1-i, c)         (r, -1-i)         (H-1-r, W+i)
//   P4     (c, -1-i)        (c, H+i)          (-1-i, r)         (H+i, r)
//
// Pm mirrors in its left and right edges and repeats down; Pg and Pgg
// glide; P2 turns by half about the middles of the left and right edges;
// Pmg mirrors left and turns by half about the right edge's middle; P4
// turns by quarters about the top left and bottom right corners.
//
// Diagonal partners, for a corner pixel at row distance i and column
// distance j, from the copy that meets the cell only at that corner:
//
//   group  top left         top right        bottom left      bottom right
//   Pm     (H+i, -1-j)      (H+i, W+j)       (-1-i, -1-j)     (-1-i, W+j)
//   Pg     (-1-i, W+j)      (-1-i, -1-j)     (H+i, W+j)       (H+i, -1-j)
//   P2     (-1-i, -1-j)     (-1-i, W+j)      (H+i, -1-j)      (H+i, W+j)
//   Pgg    (-1-i, -1-j)     (-1-i, W+j)      (H+i+1, -1-j)    (H+i, W+j)
//   Pmg    (H+i, -1-j)      (-1-i, W+j)      (-1-i, -1-j)     (H+i, W+j)
//   P4     (-1-i, -1-j)     (-1-i, W+j)      (H+i, -1-j)      (H+i, W+j)
//
// For the rectangles this is the row rule applied to the column partner.
// Two corners read one pixel off on purpose, and are kept: Pgg's bottom
// left diagonal partner lies one row lower (H+i+1), and P2's top right
// corner reads its column partner one column further right, (H-1-i,
// W+j+1). Reads are held inside the picture's margins.
#include <cstddef>

#include "frame/result_codes.h"
#include "tile/groups/groups.h"
#include "tile/groups/tile_build.h"
#include "tile/tile_work.h"

namespace fancy {
namespace {

using tile_build::WithLayouts;

// kr r + kc c + kd d + ke e + kH H + kW W + k1, with d the distance from
// the rule's edge (the row distance at corners) and e the column distance.
struct Lin {
  int32_t kr, kc, kd, ke, kH, kW, k1;
};
struct Partner {
  Lin row, col;
};

constexpr Lin kR = {1, 0, 0, 0, 0, 0, 0};            // r
constexpr Lin kC = {0, 1, 0, 0, 0, 0, 0};            // c
constexpr Lin kFlipR = {-1, 0, 0, 0, 1, 0, -1};      // H-1-r
constexpr Lin kFlipC = {0, -1, 0, 0, 0, 1, -1};      // W-1-c
constexpr Lin kPastH = {0, 0, 1, 0, 1, 0, 0};        // H+d
constexpr Lin kPastW = {0, 0, 1, 0, 0, 1, 0};        // W+d
constexpr Lin kBefore = {0, 0, -1, 0, 0, 0, -1};     // -1-d
constexpr Lin kRowPastH = {0, 0, 1, 0, 1, 0, 0};     // H+i
constexpr Lin kRowPastH1 = {0, 0, 1, 0, 1, 0, 1};    // H+i+1
constexpr Lin kRowBefore = {0, 0, -1, 0, 0, 0, -1};  // -1-i
constexpr Lin kColPastW = {0, 0, 0, 1, 0, 1, 0};     // W+j
constexpr Lin kColBefore = {0, 0, 0, -1, 0, 0, -1};  // -1-j

enum { kTopLeft = 0, kTopRight = 1, kBottomLeft = 2, kBottomRight = 3 };

struct BandRules {
  Partner top, bottom, left, right;
  Partner diagonal[4];
  int32_t columnShift[4];  // added to the column partner's column at a corner
};

constexpr Partner P(Lin row, Lin col) { return {row, col}; }

constexpr BandRules kPm = {P(kPastH, kC),
                           P(kBefore, kC),
                           P(kR, kBefore),
                           P(kR, kPastW),
                           {P(kRowPastH, kColBefore), P(kRowPastH, kColPastW),
                            P(kRowBefore, kColBefore), P(kRowBefore, kColPastW)},
                           {0, 0, 0, 0}};
constexpr BandRules kPg = {P(kPastH, kC),
                           P(kBefore, kC),
                           P(kFlipR, kPastW),
                           P(kFlipR, kBefore),
                           {P(kRowBefore, kColPastW), P(kRowBefore, kColBefore),
                            P(kRowPastH, kColPastW), P(kRowPastH, kColBefore)},
                           {0, 0, 0, 0}};
constexpr BandRules kP2 = {P(kPastH, kC),
                           P(kBefore, kC),
                           P(kFlipR, kBefore),
                           P(kFlipR, kPastW),
                           {P(kRowBefore, kColBefore), P(kRowBefore, kColPastW),
                            P(kRowPastH, kColBefore), P(kRowPastH, kColPastW)},
                           {0, 1, 0, 0}};
constexpr BandRules kPgg = {P(kPastH, kFlipC),
                            P(kBefore, kFlipC),
                            P(kFlipR, kPastW),
                            P(kFlipR, kBefore),
                            {P(kRowBefore, kColBefore), P(kRowBefore, kColPastW),
                             P(kRowPastH1, kColBefore), P(kRowPastH, kColPastW)},
                            {0, 0, 0, 0}};
constexpr BandRules kPmg = {P(kPastH, kC),
                            P(kBefore, kC),
                            P(kR, kBefore),
                            P(kFlipR, kPastW),
                            {P(kRowPastH, kColBefore), P(kRowBefore, kColPastW),
                             P(kRowBefore, kColBefore), P(kRowPastH, kColPastW)},
                            {0, 0, 0, 0}};
constexpr BandRules kP4 = {P(kC, kBefore),
                           P(kC, kPastH),
                           P(kBefore, kR),
                           P(kPastH, kR),
                           {P(kRowBefore, kColBefore), P(kRowBefore, kColPastW),
                            P(kRowPastH, kColBefore), P(kRowPastH, kColPastW)},
                           {0, 0, 0, 0}};

struct Sizes {
  int32_t h, w;
};

inline int32_t Eval(const Lin& l, int32_t r, int32_t c, int32_t d, int32_t e, const Sizes& s) {
  return l.kr * r + l.kc * c + l.kd * d + l.ke * e + l.kH * s.h + l.kW * s.w + l.k1;
}

// The picture around the cell, with reads held inside its margins.
struct Picture {
  const uint8_t* corner;
  int32_t stride;
  int32_t bytes;
  int32_t top, left, bottom, right;  // readable rows and columns, inclusive

  const uint8_t* At(int32_t r, int32_t c) const {
    r = r < top ? top : (r > bottom ? bottom : r);
    c = c < left ? left : (c > right ? right : c);
    return corner + static_cast<ptrdiff_t>(r) * stride + static_cast<ptrdiff_t>(c) * bytes;
  }
};

template <class Px>
void FeatherBands(const BandRules& rules, const Sizes& size, int32_t f, const Picture& picture,
                  uint8_t* cell, int32_t cellStride, const Fixed* bandIn, const Fixed* bandOut,
                  const Fixed* cornerIn) {
  for (int32_t r = 0; r < size.h; ++r) {
    const bool top = r < f;
    const bool bottom = !top && size.h - 1 - r < f;
    const int32_t i = top ? r : size.h - 1 - r;
    const Partner& rowRule = top ? rules.top : rules.bottom;
    uint8_t* out = cell + static_cast<ptrdiff_t>(r) * cellStride;
    for (int32_t c = 0; c < size.w; ++c, out += Px::kDstBytes) {
      const bool left = c < f;
      const bool right = !left && size.w - 1 - c < f;
      const int32_t j = left ? c : size.w - 1 - c;
      const uint8_t* in = picture.At(r, c);
      if (!top && !bottom && !left && !right) {
        Px::Copy(out, in);
        continue;
      }
      const Partner& colRule = left ? rules.left : rules.right;
      if ((top || bottom) && (left || right)) {
        const int corner = (top ? 0 : 2) + (left ? 0 : 1);
        const uint8_t* rowPartner =
            picture.At(Eval(rowRule.row, r, c, i, 0, size), Eval(rowRule.col, r, c, i, 0, size));
        const uint8_t* colPartner =
            picture.At(Eval(colRule.row, r, c, j, 0, size),
                       Eval(colRule.col, r, c, j, 0, size) + rules.columnShift[corner]);
        const Partner& diag = rules.diagonal[corner];
        const uint8_t* diagPartner =
            picture.At(Eval(diag.row, r, c, i, j, size), Eval(diag.col, r, c, i, j, size));
        const Fixed wr = cornerIn[i], wc = cornerIn[j];
        const int32_t wIn = FixedMul(wr, wc);
        const int32_t wCol = FixedMul(wr, kFixedOne - wc);
        const int32_t wRow = FixedMul(kFixedOne - wr, wc);
        const int32_t wDiag = FixedMul(kFixedOne - wr, kFixedOne - wc);
        for (int ch = 0; ch < Px::kChannels; ++ch) {
          const int32_t v = WrapAdd(
              WrapAdd(WrapMul(wIn, Px::Get(in, ch)), WrapMul(wCol, Px::Get(colPartner, ch))),
              WrapAdd(WrapMul(wRow, Px::Get(rowPartner, ch)),
                      WrapMul(wDiag, Px::Get(diagPartner, ch))));
          Px::Put(out, ch, static_cast<uint8_t>(v >> 16));
        }
        continue;
      }
      const Partner& rule = top || bottom ? rowRule : colRule;
      const int32_t d = top || bottom ? i : j;
      const uint8_t* partner =
          picture.At(Eval(rule.row, r, c, d, 0, size), Eval(rule.col, r, c, d, 0, size));
      for (int ch = 0; ch < Px::kChannels; ++ch) {
        const int32_t v = bandIn[d] * Px::Get(in, ch) + bandOut[d] * Px::Get(partner, ch);
        Px::Put(out, ch, static_cast<uint8_t>(v >> 16));
      }
    }
  }
}

int16_t FeatherByBands(const Symmetry& symmetry, const BandRules& rules, int32_t h, int32_t w,
                       const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                       uint8_t* cell, int32_t cellStride, int32_t cellType) {
  const int32_t f = symmetry.feather;
  const int32_t sourceBytes = TileBytesPerPixel(sourceType);
  const int32_t cellBytes = TileBytesPerPixel(cellType);
  if (!source || !cell || sourceBytes == 0 || cellBytes == 0 || h <= 0 || w <= 0 || f < 0 ||
      sourceStride < int64_t{w} * sourceBytes || cellStride < int64_t{w} * cellBytes) {
    return kErrFilterFailure;
  }
  // Weights by distance: the band's two and the corner's.
  const size_t count = f > 0 ? static_cast<size_t>(f) : 1;
  std::unique_ptr<uint8_t[]> block = AllocateTileWork(3 * count * sizeof(Fixed));
  if (!block) return kErrOutOfMemory;
  Fixed* bandIn = reinterpret_cast<Fixed*>(block.get());
  Fixed* bandOut = bandIn + count;
  Fixed* cornerIn = bandOut + count;
  for (int32_t d = 0; d < f; ++d) {
    bandIn[d] = FixedDiv(WrapShl(f + 1 + d, 16), WrapShl(2 * f + 1, 16));
    bandOut[d] = FixedDiv(WrapShl(f - d, 16), WrapShl(2 * f + 1, 16));
    cornerIn[d] = FixedDiv(WrapShl(f + 1 + d, 16), WrapShl(2 * f, 16));
  }
  const Picture picture = {source,
                           sourceStride,
                           sourceBytes,
                           -symmetry.featherMargin[kSideTop],
                           -symmetry.featherMargin[kSideLeft],
                           h - 1 + symmetry.featherMargin[kSideBottom],
                           w - 1 + symmetry.featherMargin[kSideRight]};
  const Sizes size = {h, w};
  return WithLayouts(sourceType, cellType, [&](auto px) -> int16_t {
    FeatherBands<decltype(px)>(rules, size, f, picture, cell, cellStride, bandIn, bandOut,
                               cornerIn);
    return kNoError;
  });
}

}  // namespace

int16_t Pm::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kPm, height, width, source, sourceStride, sourceType, cell,
                        cellStride, cellType);
}

int16_t Pg::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kPg, height, width, source, sourceStride, sourceType, cell,
                        cellStride, cellType);
}

int16_t P2::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kP2, height, width, source, sourceStride, sourceType, cell,
                        cellStride, cellType);
}

int16_t Pgg::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                                int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kPgg, height, width, source, sourceStride, sourceType, cell,
                        cellStride, cellType);
}

int16_t Pmg::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                                int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kPmg, height, width, source, sourceStride, sourceType, cell,
                        cellStride, cellType);
}

int16_t P4::BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                               int32_t, uint8_t* cell, int32_t cellStride, int32_t cellType) {
  return FeatherByBands(*this, kP4, size, size, source, sourceStride, sourceType, cell, cellStride,
                        cellType);
}

}  // namespace fancy
