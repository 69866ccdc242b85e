// TileRecord: Tessaris's EffectRecord (FilterId 201, class 2). The host keeps
// it from run to run; the dialog edits it in place and the tile run reads it
// at its start. Everything in it may come from a saved parameters block, so
// the run checks every field before use (TileRecordIsUsable and the clamps of
// TileSetup).
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/effect_record.h"
#include "tile/symmetry_params.h"

namespace fancy {

// Where the mother cell is cut from.
enum : int32_t {
  kTileSourceFile = 1,   // a BMP file loaded by the user
  kTileSourceImage = 2,  // the image being filtered
};

// The preview's neutral colour code, stored twice by the defaults.
inline constexpr int32_t kTilePreviewNeutral = 33536;

inline constexpr int32_t kTilePathSize = 260;
inline constexpr int32_t kTilePolygonPoints = 8;

struct TileRecord {
  EffectHead head;

  // ---- the effect's settings ------------------------------------------
  int32_t groupId;              // 1..17, the chooser's order
  int32_t mode;                 // kTileModeNormal .. kTileModeScreen
  int32_t opacity;              // percent, 100 is all tile
  int32_t featherPercent;       // 0..100 of the largest feather the cell allows
  int32_t showFeatherBoundary;  // check "Show feather boundary"
  int32_t continuousPreview;    // check "Continuous preview"
  int32_t symmetryPreview;      // the small tile view is on
  int32_t previewColour[2];     // kTilePreviewNeutral after a reset

  // ---- the source ------------------------------------------------------
  int32_t sourceKind;    // kTileSourceFile or kTileSourceImage
  int32_t loadedType;    // TilePixelType of the loaded picture (1, 3 or 4)
  int32_t loadedWidth;   // size of the loaded picture
  int32_t loadedHeight;
  int32_t cropLeft;      // the part of the loaded picture used, right and
  int32_t cropTop;       // bottom one past its last pixel
  int32_t cropRight;
  int32_t cropBottom;
  int32_t cropSet;       // 1 when the crop needs no choice by the user
  char sourcePath[kTilePathSize];

  // ---- the cell ---------------------------------------------------------
  int32_t paramsWidth;   // the source size the cell below was placed in;
  int32_t paramsHeight;  // 0 while no cell has been made
  int32_t cellTop;       // the cell's box in that picture, bottom and right
  int32_t cellLeft;      // one past it
  int32_t cellBottom;
  int32_t cellRight;
  double cellFracTop;    // the same box as fractions of the picture, so that
  double cellFracLeft;   // a picture of another size keeps the proportions
  double cellFracBottom;
  double cellFracRight;
  double cellShear;      // P1's shear as a fraction of the cell's height
  SymmetryParams cell;   // the cell as the group stores it

  // ---- the tile's position ----------------------------------------------
  double panFractionX;   // pan as fractions of the filtered image
  double panFractionY;
  int32_t panX;          // and in pixels
  int32_t panY;
  int32_t firstRun;      // set by OK, cleared by the run's tile maker
  int32_t errorState;    // cleared by a reset

  // ---- the dialog's own state ---------------------------------------------
  double previewScaleX;  // preview pixels per source pixel
  double previewScaleY;
  int32_t paneRect[4];   // left, top, right, bottom of the Original pane
  int32_t drawnRect[4];  // the picture inside it
  int32_t polygon[kTilePolygonPoints][2];
  int32_t polygonCount;
  int32_t handles[kTilePolygonPoints];
  int32_t handleCount;
  int32_t polygonValid;
  int32_t featherOnScreen;  // feather of the polygon, in preview pixels
};

static_assert(offsetof(TileRecord, groupId) == 8);
static_assert(offsetof(TileRecord, sourcePath) == 80);
static_assert(offsetof(TileRecord, cellFracTop) % 8 == 0);

// The tile record behind an EffectHead of class 2.
inline TileRecord* TileRecordOf(EffectHead* effect) {
  return reinterpret_cast<TileRecord*>(effect);
}

}  // namespace fancy
