#include "image_fixtures.h"

#include <gtest/gtest.h>

#include <random>

namespace fancy::testing {

AttachedCache::AttachedCache(int64_t budget) : cache_(TileCacheCreate(budget)) {
  gTileCache = cache_;
}

AttachedCache::~AttachedCache() {
  EXPECT_EQ(cache_->tileCount, 0) << "tiles left behind";
  EXPECT_EQ(cache_->bytesHeld, 0);
  gTileCache = nullptr;
  TileCacheDestroy(cache_);
}

uint64_t GetPixel(const uint8_t* row, int32_t bits, int64_t x) {
  uint64_t v = 0;
  for (int32_t b = 0; b < bits; ++b) {
    int64_t at = x * bits + b;
    v = (v << 1) | ((row[at >> 3] >> (7 - (at & 7))) & 1);
  }
  return v;
}

void SetPixel(uint8_t* row, int32_t bits, int64_t x, uint64_t value) {
  for (int32_t b = 0; b < bits; ++b) {
    int64_t at = x * bits + b;
    uint8_t mask = static_cast<uint8_t>(0x80 >> (at & 7));
    if ((value >> (bits - 1 - b)) & 1) row[at >> 3] |= mask;
    else row[at >> 3] &= static_cast<uint8_t>(~mask);
  }
}

bool AllUnlocked(const Image* image) {
  if (!image->tiles) return true;
  for (int32_t r = 0; r < image->tileRows; ++r) {
    for (int32_t c = 0; c < image->tileColumns; ++c) {
      const TileCell& cell = image->tiles[r][c];
      if (cell.lockCount != 0) return false;
      if (cell.tile && cell.tile->lockCount != 0) return false;
    }
  }
  return true;
}

std::vector<uint8_t> Random(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(n);
  for (auto& b : v) b = static_cast<uint8_t>(rng());
  return v;
}

std::vector<uint8_t> RandomContent(Image* image, uint32_t seed) {
  std::mt19937 rng(seed);
  int32_t rowBytes = ImageRowBytesFor(image->bitsPerPixel, image->width);
  std::vector<uint8_t> model(static_cast<size_t>(rowBytes) * image->height);
  for (auto& v : model) v = static_cast<uint8_t>(rng());
  EXPECT_EQ(ImageWritePixels(image, 0, 0, image->width, image->height, rowBytes, model.data(), 0), 1);
  return model;
}

}  // namespace fancy::testing
