// The symmetry of a wallpaper tile: the mother cell, how it is held,
// resized, measured and grown by its feather, and the tile it makes.
//
// A Symmetry is one of seventeen group classes (tile/groups/groups.h), each
// derived from one of eight cell shapes (tile/shapes.h). One object exists
// at a time; MakeSymmetry owns it. Members are public and plain, as the
// effect's setup, dialog and tile maker read and set them directly.
//
// The order of calls for a new group: LoadParams (or SetDefaultCell the
// first time, or SetFromExtent from stored fractions), ComputeTileSize,
// ComputeCellExtent, ComputeRowShift, SetFeatherPercent, PrepareMargins.
#pragma once

#include <climits>
#include <cstdint>
#include <memory>

#include "frame/host_record.h"
#include "tile/build_hooks.h"
#include "tile/symmetry_params.h"

namespace fancy {

// Group ids, in the order of the chooser's buttons.
enum : int32_t {
  kGroupP1 = 1,
  kGroupCm = 2,
  kGroupPm = 3,
  kGroupP2 = 4,
  kGroupPg = 5,
  kGroupPgg = 6,
  kGroupPmm = 7,
  kGroupP4 = 8,
  kGroupP4g = 9,
  kGroupP4m = 10,
  kGroupCmm = 11,
  kGroupPmg = 12,
  kGroupP3 = 13,
  kGroupP3m1 = 14,
  kGroupP31m = 15,
  kGroupP6 = 16,
  kGroupP6m = 17,
};
inline constexpr int32_t kGroupFirst = kGroupP1;
inline constexpr int32_t kGroupLast = kGroupP6m;

// Index of each side in the margin and bounds sets.
enum : int { kSideTop = 0, kSideLeft = 1, kSideBottom = 2, kSideRight = 3 };

// A cell's bounding box in float pixels. shearFraction is read and written
// by the parallelogram only: its shear as a fraction of its height.
struct CellExtent {
  double top;
  double left;
  double bottom;
  double right;
  double shearFraction;
};

class Symmetry {
 public:
  explicit Symmetry(int32_t group) : groupId(group) {}
  virtual ~Symmetry() = default;
  Symmetry(const Symmetry&) = delete;
  Symmetry& operator=(const Symmetry&) = delete;

  // ---- the group's operations -------------------------------------------

  // Cell position, size, feather and percent from the stored parameters;
  // the exact values start equal to the integers.
  virtual void LoadParams(const SymmetryParams& params);
  // The same back, with the group id and the picture's size.
  virtual void StoreParams(SymmetryParams* params) const;

  // Integer rectangle to cell: its left and top become the cell's position
  // and the shape fits its size into the rectangle.
  virtual void SetFromRect(int32_t top, int32_t left, int32_t bottom, int32_t right) = 0;
  // The same from a float box: stores the exact values, then rounds each
  // with the shape's guard (a small constant added before truncating).
  virtual void SetFromExtent(const CellExtent& extent) = 0;
  // The cell's bounding box: top and left are the box's corner, bottom and
  // right lie one past it.
  virtual void GetRect(Rect16* rect) const = 0;
  virtual void GetExtent(CellExtent* extent) const = 0;

  // Lowers the feather to the shape's own limit: -1 if it did, else 0.
  virtual int32_t ClampFeather() = 0;
  // Non-zero if the cell grown by its feather leaves the picture.
  virtual int32_t FeatherLeavesImage() const = 0;

  // A cell about a third of the picture, at a third of the picture (the
  // square cells centred), feather 0.
  virtual void SetDefaultCell() = 0;
  // Position and size times scale, stored exact, then rounded with the
  // guard. Cells measured by one size take it from the height argument.
  virtual void SetScaled(int32_t x, int32_t y, int32_t height, int32_t width, int32_t shear,
                         double scale) = 0;
  // Position and size times factor, truncating; the exact values follow.
  virtual void Scale(double factor) = 0;

  // tileWidth, tileHeight of the repeat unit from the cell's size.
  virtual void ComputeTileSize() = 0;
  // rowShift: the parallelogram's shear, 0 for every other group.
  virtual void ComputeRowShift();
  // extentWidth, extentHeight of the pixels the cell covers.
  virtual void ComputeCellExtent() = 0;

  // feather = the shape's largest feather x percent / 100, capped at 127
  // where the feather engine needs it, then made to fit the picture.
  virtual void SetFeatherPercent(int32_t percent);
  // The margins in x and y that the feather needs around the cell.
  virtual void GetFeatherOffsets(int32_t* outX, int32_t* outY) const = 0;
  // The part of the source picture the effect reads: the bounding box
  // grown by featherMargin.
  virtual void GetSourceRect(Rect16* rect) const;

  // Replicates the cell into the tile: tileWidth x tileHeight pixels of
  // tileType, rows tileStride bytes apart. source is the first byte of the
  // cell's bounding box (extentWidth x extentHeight pixels of sourceType,
  // rows sourceStride bytes apart); with flipRows its rows lie bottom up in
  // memory, and the finished tile is reversed row by row to match. Types
  // are TilePixelType codes; RGB in three and in four bytes may be mixed.
  // progressMode 0 makes no progress calls, 1 counts the cell's rows
  // against rows + targetHeight, 2 against rows + 1; hooks (may be null)
  // get them and the abort test once per cell row. Returns 0,
  // kTileBuildCancelled when aborted, -108 without memory, and
  // kErrFilterFailure for arguments that do not fit the group (nothing
  // written). This default refuses.
  virtual int16_t BuildTile(const uint8_t* source, int32_t sourceStride, int32_t sourceType,
                            int32_t progressMode, uint8_t* tile, int32_t tileStride,
                            int32_t tileType, TileBuildHooks* hooks);
  // Cross-fades the cell's border with what lies across it into cell
  // (extentWidth x extentHeight pixels, top row first). source points at
  // the cell's corner in a picture that reaches featherMargin pixels
  // beyond the bounding box on every side, rows top first. The groups with
  // mirrors on every edge, and this default, refuse with
  // kErrFilterFailure. finalFlag is 1 on the final path; the result does
  // not depend on it. -108, with cell untouched, when memory runs out.
  virtual int16_t BuildFeatheredCell(const uint8_t* source, int32_t sourceStride,
                                     int32_t sourceType, int32_t finalFlag, uint8_t* cell,
                                     int32_t cellStride, int32_t cellType);

  // ---- shared by every group --------------------------------------------

  // Lowers the feather so that the grown cell keeps one pixel inside each
  // edge of the picture (never below 0). Needs the cell extent.
  void ClampToPicture();

  // Margins and bounds. A bounds set is [top] = margin top + extentHeight,
  // [left] = -margin left, [bottom] = -margin bottom, [right] = margin
  // right + extentWidth.
  void ClearCellMargin();
  void SetCellBounds();
  void SetFeatherMargin();   // featherMargin[i] = max(cellMargin[i], feather)
  void SetFeatherBounds();
  void SetOuterMargin();     // outerMargin[i] = max(featherMargin[i], the band)
  void SetOuterBounds();
  // The four steps after a cell is set: cell margin cleared, cell bounds,
  // feather margin, feather bounds.
  void PrepareMargins();

  // Keeps a float box valid inside the picture: sides under 10 (12 for the
  // hexagonal groups 13..17) are raised, dropping the shear; then the box
  // is moved to lie within columns 1..imageWidth-1 and rows
  // 1..imageHeight-1, keeping its size.
  void NormalizeExtent(CellExtent* extent) const;

  // ---- members ------------------------------------------------------------

  const int32_t groupId;
  int32_t imageWidth = 0;    // source picture the cell lives in
  int32_t imageHeight = 0;
  int32_t targetWidth = 0;   // filtered rectangle; targetHeight feeds progress
  int32_t targetHeight = 0;
  int32_t cellX = 0;         // left and top of the cell in the source picture
  int32_t cellY = 0;
  double exactX = 0.0;       // the same before rounding, so scaling does not drift
  double exactY = 0.0;
  int32_t tileWidth = 0;     // repeat unit, from ComputeTileSize
  int32_t tileHeight = 0;
  int32_t extentWidth = 0;   // cell's bounding box, from ComputeCellExtent
  int32_t extentHeight = 0;
  int32_t rowShift = 0;      // offset of each next row of tiles (P1 only)
  int32_t feather = 0;       // pixels
  int32_t featherPercent = 0;
  int32_t reserved = 0;      // carried to and from the parameters only
  int32_t flipRows = 0;      // 1 on the final path, where rows run bottom up
  int16_t cellMargin[4] = {};
  int16_t featherMargin[4] = {};
  int16_t outerMargin[4] = {};
  int16_t cellBounds[4] = {};
  int16_t featherBounds[4] = {};
  int16_t outerBounds[4] = {};

 protected:
  // The largest feather SetFeatherPercent can give, and the cap it applies.
  virtual int32_t FeatherMaximum() const = 0;
  virtual int32_t FeatherCap() const { return INT32_MAX; }
  // The band of outerMargin: the margin the feather engine reads around
  // the cell.
  virtual int32_t OuterBand() const { return feather + 5; }
  // Left column of the cell's bounding box.
  virtual int32_t BoxLeft() const { return cellX; }
};

// A new object of the group's class; null for an id outside 1..17 or when
// memory runs out.
std::unique_ptr<Symmetry> CreateSymmetry(int32_t groupId);

// Replaces the current object by a new one of groupId's class and returns
// it; the previous object is deleted first. Null (and no current object)
// for an unknown id or without memory.
Symmetry* MakeSymmetry(int32_t groupId);
Symmetry* CurrentSymmetry();
void ReleaseSymmetry();

}  // namespace fancy
