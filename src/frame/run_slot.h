// RunSlot: what is true for one run only. The host's data slot points to it
// from selector 1 (or 3, when the host repeats a filter without its dialog)
// until selector 5 or the first failure.
#pragma once

#include <cstdint>

#include "frame/host_extension.h"

namespace fancy {

struct RunSlot {
  int32_t unused0;                  // stays zero
  int32_t isFresh;                  // 1 when this run created the EffectRecord
  Image* sourceImage;               // the host's objects, from the HostExtension
  DisplayContext* displayContext;
  Image* maskImage;                 // or null
  int32_t reserved;                 // zeroed by the prepare step
  int32_t unused1;                  // stays zero
  int32_t rowsPerChunk;             // rows of filterRect per request, selector 3
  uint8_t unused2[8];               // stay zero
  // Tessaris only: the source picture loaded from a file, and three words
  // that its loader keeps about it; zero for the other effects.
  Image* loadedSource;
  int32_t loadedSourceInfo[3];
  char hostDir[260];                // the host's directory (PixelboxDir)
};

// The RunSlot held in a data slot, or null.
inline RunSlot* RunSlotOf(const intptr_t* data) {
  return data ? reinterpret_cast<RunSlot*>(*data) : nullptr;
}

}  // namespace fancy
