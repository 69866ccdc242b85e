#include "tile/tile_work.h"

#include <new>

namespace fancy {
namespace {

size_t gTileWorkLimit = 0;

// Nothing the engine asks for comes near this; a request above it is a
// size computed from bad input.
constexpr size_t kTileWorkMaximum = size_t{1} << 31;

}  // namespace

std::unique_ptr<uint8_t[]> AllocateTileWork(size_t bytes) {
  if (bytes == 0 || bytes > kTileWorkMaximum) return nullptr;
  if (gTileWorkLimit != 0 && bytes > gTileWorkLimit) return nullptr;
  return std::unique_ptr<uint8_t[]>(new (std::nothrow) uint8_t[bytes]());
}

void SetTileWorkLimit(size_t limit) { gTileWorkLimit = limit; }

}  // namespace fancy
