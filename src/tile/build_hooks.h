// How a tile build reports its progress and learns that the user wants to
// stop. The tile maker fills one with the host's procedures; previews and
// tests may pass none.
#pragma once

#include <cstdint>

namespace fancy {

// BuildTile's result when the abort test said stop: the tile is left half
// made and the caller ends the run as cancelled.
inline constexpr int16_t kTileBuildCancelled = 1;

struct TileBuildHooks {
  // Called once per cell row with the rows done and the total they count
  // against; may be null.
  void (*progress)(void* context, int32_t done, int32_t total);
  // Asked once per cell row; true stops the build. May be null.
  bool (*abort)(void* context);
  void* context;
  // Set by the build: progress rows done and the total counted against,
  // so that the merge can go on counting where the build stopped.
  int32_t done;
  int32_t total;
};

}  // namespace fancy
