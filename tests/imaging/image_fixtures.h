// Helpers for the image tests: an attached in-memory tile cache, and an
// independent model of packed pixel rows.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/image.h"

namespace fancy::testing {

// Attaches a tile cache for the life of the object, so that big images get a
// grid; on the way out every tile must have been released.
class AttachedCache {
 public:
  explicit AttachedCache(int64_t budget);
  ~AttachedCache();
  TileCache* cache() const { return cache_; }

 private:
  TileCache* cache_;
};

// Bits `bits` wide of pixel x in a row, most significant first.
uint64_t GetPixel(const uint8_t* row, int32_t bits, int64_t x);
void SetPixel(uint8_t* row, int32_t bits, int64_t x, uint64_t value);

// Every cell of the image has no lock outstanding.
bool AllUnlocked(const Image* image);

// n bytes from a generator seeded with seed: the same bytes for the same
// seed on every run.
std::vector<uint8_t> Random(size_t n, uint32_t seed);

// An image of the type with its whole content set to random pixels through
// the model; answers the model (rows of ImageRowBytesFor bytes).
std::vector<uint8_t> RandomContent(Image* image, uint32_t seed);

}  // namespace fancy::testing
