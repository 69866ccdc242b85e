#include "tile/tile_state.h"

namespace fancy {

TileEngineState gTileState;

namespace {

void EmptyWorkBuffer(TileWorkBuffer* buffer) { *buffer = TileWorkBuffer{}; }

}  // namespace

void TileReleaseEngine() {
  TileEngineState& s = gTileState;
  s.tilePixels.reset();
  s.tileBuffer = TileBuffer{};
  s.tileBuffer.state = kTileBufferEmpty;
  EmptyWorkBuffer(&s.cellBuffer);
  EmptyWorkBuffer(&s.auxBuffer);
  s.recordsMade = false;
  if (s.symmetry) ReleaseSymmetry();
  s.symmetry = nullptr;
  s.phase = kTilePhaseIdle;
  s.progressDone = s.progressTotal = 0;
  s.nextRow = 0;
  s.sourceRequest = Rect16{};
}

void TileResetState() {
  TileReleaseEngine();
  ImagePtr loaded = std::move(gTileState.loadedSource);
  gTileState = TileEngineState{};
  gTileState.tileBuffer.state = kTileBufferEmpty;
}

bool TileHasTile() { return gTileState.tilePixels != nullptr; }

}  // namespace fancy
