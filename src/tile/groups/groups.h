// The seventeen wallpaper groups, each a class on its cell's shape. The
// shape supplies the cell's measures; a group adds the size of its tile
// and the way it replicates and feathers the cell.
//
// Tile builders by family: copy_groups.cpp (the rectangle, square and
// right-triangle groups), p1.cpp, p3.cpp, p3m1.cpp, kite_groups.cpp (P31m,
// P6) and p6m.cpp. Feathering: band_feather.cpp (Pm, Pg, P2, Pgg, Pmg, P4)
// and mask_feather.cpp with the maps of feather_maps.cpp (P1, Cm, Cmm,
// P4g, P3, P31m, P6). Pmm, P4m, P3m1 and P6m have mirrors on every edge
// and take no feather.
#pragma once

#include "tile/shapes.h"

namespace fancy {

class P1 final : public ParallelogramSymm {
 public:
  P1() : ParallelogramSymm(kGroupP1) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Cm final : public T45Symm {
 public:
  Cm() : T45Symm(kGroupCm) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Pm final : public RectSymm {
 public:
  Pm() : RectSymm(kGroupPm) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P2 final : public RectSymm {
 public:
  P2() : RectSymm(kGroupP2) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Pg final : public RectSymm {
 public:
  Pg() : RectSymm(kGroupPg) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Pgg final : public RectSymm {
 public:
  Pgg() : RectSymm(kGroupPgg) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Pmm final : public RectSymm {
 public:
  Pmm() : RectSymm(kGroupPmm) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
};

class P4 final : public SquareSymm {
 public:
  P4() : SquareSymm(kGroupP4) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P4g final : public T45Symm {
 public:
  P4g() : T45Symm(kGroupP4g) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P4m final : public T45Symm {
 public:
  P4m() : T45Symm(kGroupP4m) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
};

class Cmm final : public T45Symm {
 public:
  Cmm() : T45Symm(kGroupCmm) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class Pmg final : public RectSymm {
 public:
  Pmg() : RectSymm(kGroupPmg) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P3 final : public DiamondSymm {
 public:
  P3() : DiamondSymm(kGroupP3) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P3m1 final : public T60Symm {
 public:
  P3m1() : T60Symm(kGroupP3m1) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
};

class P31m final : public KiteSymm {
 public:
  P31m() : KiteSymm(kGroupP31m) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P6 final : public KiteSymm {
 public:
  P6() : KiteSymm(kGroupP6) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
  int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                             int32_t finalFlag, uint8_t* cell, int32_t cellStride,
                             int32_t cellType) override;
};

class P6m final : public T30Symm {
 public:
  P6m() : T30Symm(kGroupP6m) {}
  void ComputeTileSize() override;
  int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                    int32_t progressMode, uint8_t* tile, int32_t tileStride, int32_t tileType,
                    TileBuildHooks* hooks) override;
};

}  // namespace fancy
