// The tile run: the tile is made once from the source, then merged into the
// image a row at a time. The frame's handlers (tile_hooks.cpp) call these on
// the selectors of the same kind; the dialog calls MakeTile and
// TilePreviewRender for its previews and Save Tile.
//
// Results are the system's codes: 0, -108 out of memory, -128 cancelled,
// -9987 a failure, -19 an image mode the effect cannot work in.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "frame/run_slot.h"
#include "imaging/image.h"
#include "tile/symmetry.h"
#include "tile/tile_buffer.h"
#include "tile/tile_record.h"

namespace fancy {

inline constexpr int32_t kTileMinimumImageSide = 50;
inline constexpr int16_t kErrBadImageMode = -19;
inline constexpr uint32_t kStrTileTooSmall = 1257;

// Selector 2: refuses a filtered rectangle under 50 pixels either way with a
// message box (errorCode 16, -128); else writes the memory plan and returns 0.
int16_t TilePrepare(FilterRecord* host);

// Everything the run needs before the tile is made: the symmetry of the
// record's group with the stored cell, feather and margins, the tile
// buffer's pan, opacity and mode, and (for the image itself) the rows to ask
// the host for. slot may be null (a preview); a file source without a loaded
// picture falls back to the image itself.
int16_t TileSetup(FilterRecord* host, TileRecord* params, const RunSlot* slot);

// Pmm, P4m, P3m1 and P6m have mirrors on every edge: their feather is 0
// whatever the record says.
inline bool TileGroupTakesNoFeather(int32_t groupId) {
  return groupId == kGroupPmm || groupId == kGroupP4m || groupId == kGroupP3m1 ||
         groupId == kGroupP6m;
}

// A loaded picture can give a cell: 50 pixels or more either way.
bool TileLoadedSourceFits(const Image* loaded);

// Fits the record to a loaded picture: its pixel type and size are noted;
// for a new picture, or a stored crop that does not lie in it, the forced
// crop is taken and the first cell made in it.
void TileAdoptLoadedSource(TileRecord* params, const Image* loaded, int32_t filteredWidth,
                           int32_t filteredHeight, bool isNew);

// The part of the source picture the builders read: from the corner of the
// cell's bounding box over the cell's extent (which may pass the box by a
// pixel or two), grown by the feather's margins; right and bottom one past.
void TileSourceRegion(const Symmetry& symmetry, Rect16* region);

// The TilePixelType of the host's rows (1, 3 or 4), 0 for an image mode or
// plane count the effect cannot work in.
int32_t TileHostPixelType(const FilterRecord* host);

// Makes the tile, held top row first with its origin at the cell's corner.
// isPreview 0 is the real run (source rows from the host's inData, progress
// and abort through the host); 1 is a preview or Save Tile, where
// previewSource is the picture being filtered as an Image of the host's type
// (rows top first, the filtered rectangle's size). A file source comes from
// the loaded picture in both cases.
int16_t MakeTile(int32_t isPreview, FilterRecord* host, TileRecord* params,
                 const Image* previewSource);

// Phase 3: merges the tile into the delivered row and asks for the next; the
// last row leaves an empty request.
int16_t MergeNextRow(FilterRecord* host);

// Selector 4: the tile in phase 2, a row in phase 3.
int16_t TileContinue(FilterRecord* host, TileRecord* params);

// Selector 5: after a cancel stores pan and opacity in params (may be null:
// the record went with the failed run), then frees the engine and clears the
// record's first-run flag.
int16_t TileFinish(FilterRecord* host, TileRecord* params);

// The Reset button's defaults. With a host, the first cell is made from its
// filtered rectangle; without one the record has no cell until a run or the
// dialog makes it.
void TileReset(const FilterRecord* host, TileRecord* params);

// The first cell for a source: a square of a third of the shorter side of
// the source (the crop, for a loaded picture), centred in it, stored as a box
// and as fractions of the source's size.
void TileDefaultCell(TileRecord* params, int32_t sourceWidth, int32_t sourceHeight);

// Pan (as fractions of the filtered image and in pixels), mode and opacity
// of the tile back into the record.
void TileStoreState(const TileBuffer& tile, TileRecord* params);

// The record can be run: a known group and mode, a source kind, a path that
// ends, finite fractions. A record that fails this is refused with -9987.
bool TileRecordIsUsable(const TileRecord& params);

// Merges the current tile into the dialog's result picture: result and
// source are one-cell pictures of the same size and host type, rows top
// first (source at preview scale, result written), scale is preview pixels
// per source pixel (0 < s <= 1). CMYK pictures hold inks, as the tile made
// for a preview does: they are merged in the host's inverted sense, so the
// result is the final run's, in inks. Nothing happens at opacity 0.
// Returns 0, or -9987 when the pictures or the tile do not fit together.
int16_t TilePreviewRender(Image* result, const Image* source, double scale);

// Writes the current tile as a BMP file of its size and type, the right way
// up; 0, a file code (3, or 5 without memory), or -9987 without a tile.
int16_t SaveTileBmp(const char* path);

}  // namespace fancy
