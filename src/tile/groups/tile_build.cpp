#include "tile/groups/tile_build.h"

#include <algorithm>

namespace fancy::tile_build {

bool MakeViews(const Symmetry& symmetry, const BuildArgs& args, CellRows* cell,
               TileRows* tileRows) {
  const int32_t sourceBytes = TileBytesPerPixel(args.sourceType);
  const int32_t tileBytes = TileBytesPerPixel(args.tileType);
  if (!args.source || !args.tile || !TilePixelTypesMatch(args.sourceType, args.tileType)) {
    return false;
  }
  if (symmetry.extentWidth <= 0 || symmetry.extentHeight <= 0 || symmetry.tileWidth <= 0 ||
      symmetry.tileHeight <= 0) {
    return false;
  }
  if (args.sourceStride < int64_t{symmetry.extentWidth} * sourceBytes ||
      args.tileStride < int64_t{symmetry.tileWidth} * tileBytes) {
    return false;
  }
  *cell = {args.source,          args.sourceStride, symmetry.extentHeight,
           symmetry.extentWidth, sourceBytes,       symmetry.flipRows != 0};
  *tileRows = {args.tile, args.tileStride, symmetry.tileWidth, symmetry.tileHeight, tileBytes};
  return true;
}

RowTicker::RowTicker(TileBuildHooks* hooks, int32_t progressMode, int32_t rows,
                     int32_t targetHeight)
    : hooks_(hooks), mode_(progressMode), rows_(rows) {
  total_ = mode_ == 1 ? WrapAdd(rows, targetHeight) : (mode_ == 2 ? WrapAdd(rows, 1) : 0);
  if (hooks_) {
    hooks_->done = 0;
    hooks_->total = total_;
  }
}

bool RowTicker::Next(int32_t row) {
  if (!hooks_) return true;
  hooks_->done = row;
  if (mode_ != 0 && hooks_->progress) hooks_->progress(hooks_->context, row, total_);
  return !(hooks_->abort && hooks_->abort(hooks_->context));
}

void RowTicker::Finish() {
  if (hooks_) hooks_->done = rows_;
}

void FinishTile(const Symmetry& symmetry, const TileRows& tile) {
  if (!symmetry.flipRows) return;
  for (int32_t top = 0, bottom = tile.height - 1; top < bottom; ++top, --bottom) {
    uint8_t* a = tile.Row(top);
    std::swap_ranges(a, a + static_cast<ptrdiff_t>(tile.width) * tile.bytes, tile.Row(bottom));
  }
}

}  // namespace fancy::tile_build
