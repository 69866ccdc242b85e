// The seventeen wallpaper groups, each a class on its cell's shape. The
// shape supplies the cell's measures; a group adds the size of its tile
// and the way it replicates and feathers the cell.
#pragma once

#include "tile/shapes.h"

namespace fancy {

class P1 final : public ParallelogramSymm {
 public:
  P1() : ParallelogramSymm(kGroupP1) {}
  void ComputeTileSize() override;
};

class Cm final : public T45Symm {
 public:
  Cm() : T45Symm(kGroupCm) {}
  void ComputeTileSize() override;
};

class Pm final : public RectSymm {
 public:
  Pm() : RectSymm(kGroupPm) {}
  void ComputeTileSize() override;
};

class P2 final : public RectSymm {
 public:
  P2() : RectSymm(kGroupP2) {}
  void ComputeTileSize() override;
};

class Pg final : public RectSymm {
 public:
  Pg() : RectSymm(kGroupPg) {}
  void ComputeTileSize() override;
};

class Pgg final : public RectSymm {
 public:
  Pgg() : RectSymm(kGroupPgg) {}
  void ComputeTileSize() override;
};

class Pmm final : public RectSymm {
 public:
  Pmm() : RectSymm(kGroupPmm) {}
  void ComputeTileSize() override;
};

class P4 final : public SquareSymm {
 public:
  P4() : SquareSymm(kGroupP4) {}
  void ComputeTileSize() override;
};

class P4g final : public T45Symm {
 public:
  P4g() : T45Symm(kGroupP4g) {}
  void ComputeTileSize() override;
};

class P4m final : public T45Symm {
 public:
  P4m() : T45Symm(kGroupP4m) {}
  void ComputeTileSize() override;
};

class Cmm final : public T45Symm {
 public:
  Cmm() : T45Symm(kGroupCmm) {}
  void ComputeTileSize() override;
};

class Pmg final : public RectSymm {
 public:
  Pmg() : RectSymm(kGroupPmg) {}
  void ComputeTileSize() override;
};

class P3 final : public DiamondSymm {
 public:
  P3() : DiamondSymm(kGroupP3) {}
  void ComputeTileSize() override;
};

class P3m1 final : public T60Symm {
 public:
  P3m1() : T60Symm(kGroupP3m1) {}
  void ComputeTileSize() override;
};

class P31m final : public KiteSymm {
 public:
  P31m() : KiteSymm(kGroupP31m) {}
  void ComputeTileSize() override;
};

class P6 final : public KiteSymm {
 public:
  P6() : KiteSymm(kGroupP6) {}
  void ComputeTileSize() override;
};

class P6m final : public T30Symm {
 public:
  P6m() : T30Symm(kGroupP6m) {}
  void ComputeTileSize() override;
};

}  // namespace fancy
