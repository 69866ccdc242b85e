// The merge phase, one image row a step, and the run's continue and finish.
#include <cstring>

#include "frame/host_bridge.h"
#include "frame/result_codes.h"
#include "tile/tile_merge.h"
#include "tile/tile_run.h"
#include "tile/tile_state.h"

namespace fancy {

int16_t MergeNextRow(FilterRecord* host) {
  TileEngineState& s = gTileState;
  if (host->progressProc) host->progressProc(s.progressDone, s.progressTotal);
  if (host->abortProc && (host->abortProc() & 0xFF)) return kErrUserCancelled;

  const TileBuffer& tile = s.tileBuffer;
  const int32_t width = tile.imageWidth;
  const int32_t row = s.filterRect.top + s.nextRow;
  const int64_t rowBytes = int64_t{width} * s.planes;
  // The host delivers exactly the one row asked for, in and out.
  if (!tile.data || !host->inData || !host->outData || host->inRect.top != row ||
      host->outRect.top != row || host->inRect.right - host->inRect.left != width ||
      host->outRect.right - host->outRect.left != width || host->inRowBytes < rowBytes ||
      host->outRowBytes < rowBytes)
    return kErrFilterFailure;

  int32_t column, tileRow;
  TileRowOrigin(tile, 0, s.nextRow, &column, &tileRow);
  const auto* in = static_cast<const uint8_t*>(host->inData);
  auto* out = static_cast<uint8_t*>(host->outData);
  // The merge writes only the bytes it computes: the rest of the row must
  // already be the image's.
  if (in != out) std::memcpy(out, in, static_cast<size_t>(rowBytes));
  if (!MergeRow(tile, out, out, column, tileRow, width, tile.pixelType, 0, 0))
    return kErrFilterFailure;
  ++s.progressDone;

  ++s.nextRow;
  if (s.nextRow >= tile.imageHeight) {
    ClearRowRequest(host);
  } else {
    RequestRows(host, static_cast<int16_t>(row + 1), static_cast<int16_t>(row + 2), 0,
                static_cast<int16_t>(s.planes - 1));
  }
  return kNoError;
}

int16_t TileContinue(FilterRecord* host, TileRecord* params) {
  TileEngineState& s = gTileState;
  switch (s.phase) {
    case kTilePhaseMakeTile: {
      const int16_t made = MakeTile(0, host, params, nullptr);
      if (made != kNoError) return made;
      s.phase = kTilePhaseMerge;
      return kNoError;
    }
    case kTilePhaseMerge: return MergeNextRow(host);
    default: return kErrFilterFailure;
  }
}

int16_t TileFinish(FilterRecord*, TileRecord* params) {
  TileEngineState& s = gTileState;
  if (TileHasTile() && s.userAborted && params) TileStoreState(s.tileBuffer, params);
  TileReleaseEngine();
  s.userAborted = 0;
  if (params) params->firstRun = 0;
  return kNoError;
}

}  // namespace fancy
