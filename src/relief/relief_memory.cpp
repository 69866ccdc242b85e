#include "relief/relief_memory.h"

#include <cstdlib>
#include <cstring>

namespace fancy {

namespace {

// Two 32-bit words in front of every block; eight bytes keep the block
// aligned for the 32-bit samples of a height map.
constexpr int32_t kHeadBytes = 8;

int64_t gInUse = 0;
int64_t gLimit = -1;

}  // namespace

void* AllocRelief(int32_t size) {
  if (size < 0 || size > INT32_MAX - kHeadBytes) return nullptr;
  const int32_t total = size + kHeadBytes;
  if (gLimit >= 0 && gInUse + total > gLimit) return nullptr;
  // The frame's memory plan never finds a buffer suite in the host, so the
  // blocks always come from the module's own zeroed memory.
  auto* head = static_cast<uint8_t*>(std::calloc(1, static_cast<size_t>(total)));
  if (!head) return nullptr;
  const uint32_t words[2] = {static_cast<uint32_t>(total), static_cast<uint32_t>(size)};
  std::memcpy(head, words, sizeof(words));
  gInUse += total;
  return head + kHeadBytes;
}

void FreeRelief(void* block) {
  if (!block) return;
  uint8_t* head = static_cast<uint8_t*>(block) - kHeadBytes;
  uint32_t total = 0;
  std::memcpy(&total, head, sizeof(total));
  gInUse -= total;
  std::free(head);
}

int64_t ReliefMemoryInUse() { return gInUse; }

void SetReliefMemoryLimit(int64_t limit) { gLimit = limit; }

}  // namespace fancy
