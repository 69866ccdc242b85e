// The eight shapes a mother cell can have. Each group class derives from
// one of them; the shape holds the cell's size and knows its measures, its
// feather limits and its rounding guard.
//
// Float to integer conversions truncate toward zero; before truncating, a
// shape adds its guard (1e-7, 0.001 or 0.01). The guards and the odd
// constants below are part of each shape's geometry: a value rounded
// another way moves the cell by a pixel.
#pragma once

#include <cstdint>

#include "tile/symmetry.h"

namespace fancy {

// Rectangle: Pm, Pg, Pmm, Pmg, Pgg, P2.
class RectSymm : public Symmetry {
 public:
  using Symmetry::Symmetry;

  void LoadParams(const SymmetryParams& params) override;
  void StoreParams(SymmetryParams* params) const override;
  void SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) override;
  void SetFromExtent(const CellExtent& extent) override;
  void GetRect(Rect16* rect) const override;
  void GetExtent(CellExtent* extent) const override;
  int32_t ClampFeather() override;
  int32_t FeatherLeavesImage() const override;
  void SetDefaultCell() override;
  void SetScaled(int32_t x, int32_t y, int32_t h, int32_t w, int32_t shear,
                 double scale) override;
  void Scale(double factor) override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

  int32_t height = 0;
  int32_t width = 0;
  double exactHeight = 0.0;
  double exactWidth = 0.0;

 protected:
  int32_t FeatherMaximum() const override;
};

// Parallelogram: P1. cellX is the left end of the top edge; shear is how
// far the bottom edge lies to the right of the top edge (negative: to the
// left), so the bounding box starts at cellX + min(shear, 0) and is
// width + |shear| wide. The extent forms are that bounding box.
class ParallelogramSymm : public Symmetry {
 public:
  using Symmetry::Symmetry;

  void LoadParams(const SymmetryParams& params) override;
  void StoreParams(SymmetryParams* params) const override;
  void SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) override;
  void SetFromExtent(const CellExtent& extent) override;
  void GetRect(Rect16* rect) const override;
  void GetExtent(CellExtent* extent) const override;
  int32_t ClampFeather() override;
  int32_t FeatherLeavesImage() const override;
  void SetDefaultCell() override;
  void SetScaled(int32_t x, int32_t y, int32_t h, int32_t w, int32_t shear,
                 double scale) override;
  void Scale(double factor) override;
  void ComputeRowShift() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

  // The margins a feather needs across the slanted edges, in 16.16 with
  // t = |shear| / height and n = sqrt(t t + 1): outA = (feather n + 1.0)
  // >> 16 across the slant, outB = (feather t + 1.0) >> 16 along the rows.
  void ShearedOffsets(int32_t featherPixels, int32_t* outA, int32_t* outB) const;

  int32_t height = 0;
  int32_t width = 0;
  int32_t shear = 0;
  double exactHeight = 0.0;
  double exactWidth = 0.0;
  double exactShear = 0.0;

 protected:
  int32_t FeatherMaximum() const override;
  int32_t FeatherCap() const override { return 127; }
  int32_t OuterBand() const override;
  int32_t BoxLeft() const override;
};

// The shapes measured by one size. Their box starts at (cellX, cellY).
class SizedSymm : public Symmetry {
 public:
  using Symmetry::Symmetry;

  void LoadParams(const SymmetryParams& params) override;
  void StoreParams(SymmetryParams* params) const override;
  void SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) override;
  void SetFromExtent(const CellExtent& extent) override;
  void GetRect(Rect16* rect) const override;
  void GetExtent(CellExtent* extent) const override;
  int32_t FeatherLeavesImage() const override;
  void SetScaled(int32_t x, int32_t y, int32_t h, int32_t w, int32_t shear,
                 double scale) override;
  void Scale(double factor) override;

  int32_t size = 0;
  double exactSize = 0.0;

 protected:
  virtual double Guard() const = 0;
  // Largest size whose box fits a rectangle of the given sides.
  virtual int32_t SizeFromRect(int32_t h, int32_t w) const = 0;
  virtual double SizeFromExtent(double h, double w) const = 0;
  // The box of a cell of this size.
  virtual int32_t BoxWidth() const = 0;
  virtual int32_t BoxHeight() const = 0;
  virtual double ExactBoxWidth() const = 0;
  virtual double ExactBoxHeight() const = 0;

  void StartDefault(int32_t newSize, bool centred);
};

// Square: P4.
class SquareSymm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override;
  double Guard() const override { return 1e-7; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override { return size; }
  int32_t BoxHeight() const override { return size; }
  double ExactBoxWidth() const override { return exactSize; }
  double ExactBoxHeight() const override { return exactSize; }
};

// Right isosceles triangle under the main diagonal of a square of side
// size: Cm, Cmm, P4g, P4m.
class T45Symm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override;
  int32_t FeatherCap() const override { return 127; }
  double Guard() const override { return 1e-7; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override { return size; }
  int32_t BoxHeight() const override { return size; }
  double ExactBoxWidth() const override { return exactSize; }
  double ExactBoxHeight() const override { return exactSize; }
};

// Rhombus with a 60 degree corner: P3. size is its height; it is about
// 1.732 size wide.
class DiamondSymm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override;
  int32_t FeatherCap() const override { return 127; }
  int32_t OuterBand() const override;
  double Guard() const override { return 0.01; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override;
  int32_t BoxHeight() const override { return size; }
  double ExactBoxWidth() const override;
  double ExactBoxHeight() const override { return exactSize; }

 private:
  int32_t FeatherBase() const;
};

// Kite, a third of a hexagon: P31m, P6. size is 4/3 of its width; it is
// 0.75 size wide and 0.866 size high.
class KiteSymm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override;
  int32_t FeatherCap() const override { return 127; }
  int32_t OuterBand() const override;
  double Guard() const override { return 0.001; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override;
  int32_t BoxHeight() const override;
  double ExactBoxWidth() const override;
  double ExactBoxHeight() const override;

 private:
  int32_t FeatherBase() const;
};

// Equilateral triangle with its base on the top row: P3m1. size is the
// side. Mirrors on every edge: no feather.
class T60Symm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  int32_t FeatherLeavesImage() const override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override { return 0; }
  double Guard() const override { return 0.001; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override { return size; }
  int32_t BoxHeight() const override;
  double ExactBoxWidth() const override { return exactSize; }
  double ExactBoxHeight() const override;
};

// Right triangle with angles of 30 and 60 degrees: P6m. size is the short
// side along the bottom; it is about 1.732 size high. Mirrors on every
// edge: no feather.
class T30Symm : public SizedSymm {
 public:
  using SizedSymm::SizedSymm;

  int32_t ClampFeather() override;
  int32_t FeatherLeavesImage() const override;
  void SetDefaultCell() override;
  void ComputeCellExtent() override;
  void GetFeatherOffsets(int32_t* outX, int32_t* outY) const override;

 protected:
  int32_t FeatherMaximum() const override { return 0; }
  double Guard() const override { return 1e-7; }
  int32_t SizeFromRect(int32_t h, int32_t w) const override;
  double SizeFromExtent(double h, double w) const override;
  int32_t BoxWidth() const override { return size; }
  int32_t BoxHeight() const override;
  double ExactBoxWidth() const override { return exactSize; }
  double ExactBoxHeight() const override;
};

}  // namespace fancy
