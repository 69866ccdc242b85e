// The size of each group's repeat unit. W and H are the cell's width and
// height, s its size.
#include "frame/fixed.h"
#include "tile/groups/groups.h"

namespace fancy {
namespace {

// The rows of a hexagonal tile: V = trunc(0.8660254 s - 0.5), 2V + 2 rows;
// 3 s / 2 columns for each of the two copies.
void HexagonalTile(Symmetry* symmetry, int32_t s) {
  const int32_t q = WrapMul(s, 3) / 2;
  const int32_t v = TruncToInt(0.8660254 * s - 0.5);
  symmetry->tileWidth = WrapMul(q, 2);
  symmetry->tileHeight = WrapAdd(WrapMul(v, 2), 2);
}

void SetTile(Symmetry* symmetry, int32_t width, int32_t height) {
  symmetry->tileWidth = width;
  symmetry->tileHeight = height;
}

// P6, P31m and P6m need an even size.
int32_t MakeEven(int32_t s) { return (s & 1) ? s - 1 : s; }

}  // namespace

void P1::ComputeTileSize() { SetTile(this, width, height); }
void Cm::ComputeTileSize() { SetTile(this, size, size); }
void Pm::ComputeTileSize() { SetTile(this, WrapMul(width, 2), height); }
void P2::ComputeTileSize() { SetTile(this, WrapMul(width, 2), height); }
void Pg::ComputeTileSize() { SetTile(this, WrapMul(width, 2), height); }
void Pgg::ComputeTileSize() { SetTile(this, WrapMul(width, 2), WrapMul(height, 2)); }
void Pmm::ComputeTileSize() { SetTile(this, WrapMul(width, 2), WrapMul(height, 2)); }
void P4::ComputeTileSize() { SetTile(this, WrapMul(size, 2), WrapMul(size, 2)); }
void P4g::ComputeTileSize() { SetTile(this, WrapMul(size, 2), WrapMul(size, 2)); }
void P4m::ComputeTileSize() { SetTile(this, WrapMul(size, 2), WrapMul(size, 2)); }
void Cmm::ComputeTileSize() { SetTile(this, WrapMul(size, 2), WrapMul(size, 2)); }
void Pmg::ComputeTileSize() { SetTile(this, WrapMul(width, 4), height); }

void P3::ComputeTileSize() {
  const int32_t rowWidth = 1 - TruncToInt(0.5 - size * 1.1547005 * 1.5);
  SetTile(this, WrapMul(rowWidth, 2), WrapMul(size, 2));
}

// P3m1 lowers its size by one first, each time it is asked.
void P3m1::ComputeTileSize() {
  size = WrapSub(size, 1);
  HexagonalTile(this, size);
}

void P31m::ComputeTileSize() {
  size = MakeEven(size);
  HexagonalTile(this, size);
}

void P6::ComputeTileSize() {
  size = MakeEven(size);
  HexagonalTile(this, size);
}

void P6m::ComputeTileSize() {
  size = MakeEven(size);
  const int32_t halfHeight = TruncToInt(1.7320508 * size - 0.5) + 1;
  SetTile(this, WrapMul(size, 6), WrapMul(halfHeight, 2));
}

}  // namespace fancy
