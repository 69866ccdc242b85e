#include "frame/memory_plan.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace fancy {

namespace {

constexpr int64_t kSuiteBufferSpace = 0x100000;
constexpr int64_t kHeadroom = 0x100000;
constexpr int64_t kMaxReported = 0x7FFFFFFF;

FreeBlockProbe gFreeBlockProbe = nullptr;

int64_t SystemFreeBlock() {
  // The kernel's estimate of what can be allocated without swapping is the
  // nearest thing to the largest free block of a 32-bit system.
  std::FILE* file = std::fopen("/proc/meminfo", "r");
  if (!file) return 0;
  char line[256];
  long long kib = 0;
  while (std::fgets(line, sizeof(line), file)) {
    if (std::sscanf(line, "MemAvailable: %lld kB", &kib) == 1) break;
    kib = 0;
  }
  std::fclose(file);
  return kib > 0 ? static_cast<int64_t>(kib) * 1024 : 0;
}

// pixelBytes by imageMode: 1 for grey, 3 for RGB, 4 for CMYK and mode 10;
// any other mode counts as many bytes as its number.
int64_t PixelBytes(int16_t imageMode) {
  switch (imageMode) {
    case kModeGray: return 1;
    case kModeRGB: return 3;
    case kModeCMYK:
    case 10: return 4;
    default: return imageMode;
  }
}

}  // namespace

bool HostOffersMemorySuites(const FilterRecord*) { return false; }

int64_t LargestFreeBlock() {
  int64_t bytes = gFreeBlockProbe ? gFreeBlockProbe() : SystemFreeBlock();
  return std::clamp<int64_t>(bytes, 0, kMaxReported);
}

void SetFreeBlockProbe(FreeBlockProbe probe) { gFreeBlockProbe = probe; }

int16_t MemoryPlan(FilterRecord* record) {
  if (HostOffersMemorySuites(record)) {
    record->bufferSpace = static_cast<int32_t>(kSuiteBufferSpace);
    return 0;
  }
  int64_t space = static_cast<int64_t>(0.85 * static_cast<double>(LargestFreeBlock()));
  if (record->maxSpace > space) space = record->maxSpace;

  const Rect16& area = record->filterRect;
  int64_t pixelBytes = PixelBytes(record->imageMode);
  int64_t width = int64_t{area.right} - area.left;
  int64_t height = int64_t{area.bottom} - area.top;
  int64_t imageBytes = pixelBytes * width * height;

  int64_t reserve = std::max<int64_t>(space - kHeadroom, 0) / 8;
  if (reserve > imageBytes) reserve = imageBytes;
  int64_t advice = space - pixelBytes * width - reserve;
  advice = std::clamp<int64_t>(advice, kMinBufferSpace, kMaxReported);
  record->bufferSpace = static_cast<int32_t>(advice);
  return 0;
}

}  // namespace fancy
