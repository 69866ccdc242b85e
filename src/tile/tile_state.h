// The tile engine's state: one run at a time, so one record, gTileState. It
// is made by TileSetup, filled by MakeTile, read by every merged row, and
// emptied by TileRelease (or TileResetState when a new record is made).
#pragma once

#include <cstdint>
#include <memory>

#include "frame/host_record.h"
#include "imaging/image.h"
#include "tile/symmetry.h"
#include "tile/tile_buffer.h"

namespace fancy {

// The run's phases.
enum : int32_t {
  kTilePhaseIdle = 0,
  kTilePhaseMakeTile = 2,  // the source rows are asked for; the tile is next
  kTilePhaseMerge = 3,     // one image row a step
};

// errorCode after a cancel during the tile build, and after the size test.
inline constexpr int16_t kTileErrorCancelled = 1;
inline constexpr int16_t kTileErrorTooSmall = 16;
inline constexpr int16_t kTileErrorLockFailed = 30;
inline constexpr int16_t kTileErrorBadMode = 35435;

// Frees an Image when it goes.
struct ImageDeleter {
  void operator()(Image* image) const { ImageDestroy(image); }
};
using ImagePtr = std::unique_ptr<Image, ImageDeleter>;

// A work buffer of the engine: the feathered cell, or the loaded source's
// bordered copy. state is kTileBufferEmpty while nothing is held.
struct TileWorkBuffer {
  int32_t state = kTileBufferEmpty;
  std::unique_ptr<uint8_t[]> handle;
  uint8_t* data = nullptr;
  int32_t rowBytes = 0;
  int32_t pixelType = 0;
  int32_t width = 0;
  int32_t height = 0;
};

struct TileEngineState {
  Symmetry* symmetry = nullptr;  // the current object of MakeSymmetry
  TileBuffer tileBuffer{};
  std::unique_ptr<uint8_t[]> tilePixels;  // behind tileBuffer.handle
  TileWorkBuffer cellBuffer;              // the feathered cell
  TileWorkBuffer auxBuffer;               // the loaded source's bordered copy
  bool recordsMade = false;               // the three records above exist

  int32_t groupId = 0;
  int32_t sourceKind = 0;  // kTileSourceFile or kTileSourceImage
  int32_t phase = kTilePhaseIdle;
  int32_t progressDone = 0;
  int32_t progressTotal = 0;
  int16_t errorCode = 0;
  int32_t userAborted = 0;

  // Geometry of the run, noted by TileSetup.
  Rect16 filterRect{};     // the host's filtered rectangle
  int32_t sourceLeft = 0;  // the source rectangle: the filtered image's size
  int32_t sourceTop = 0;   // at 0, 0, or a loaded picture's crop
  int32_t sourceWidth = 0;
  int32_t sourceHeight = 0;
  int32_t cropLeft = 0;    // the crop's corner, 0 for the image itself
  int32_t cropTop = 0;
  int32_t pixelType = 0;   // TilePixelType of the source, the tile and the rows
  int32_t planes = 0;      // planes of the host's rows
  int32_t baseX = 0;       // the tile's origin before pan: the cell's corner
  int32_t baseY = 0;
  Rect16 sourceRequest{};  // rows asked of the host for the tile (image itself)
  int32_t nextRow = 0;     // the next image row to merge, from filterRect.top
  bool recordFresh = false;  // the record was made by this run: a failed run loses it

  // The picture loaded from the record's source file, owned here; the run
  // slot points to it.
  ImagePtr loadedSource;
};

extern TileEngineState gTileState;

// Frees the tile, the work buffers and the symmetry object; keeps the loaded
// source. The state's numbers go back to their start.
void TileReleaseEngine();

// TileReleaseEngine, and the loaded source too.
void TileResetState();

// True while a tile is allocated.
bool TileHasTile();

}  // namespace fancy
