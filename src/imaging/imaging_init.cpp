// Start and stop of the imaging layer: the processor flags and the tables of
// the merge arithmetic.
#include <cmath>
#include <cstring>

#include "imaging/merge.h"
#include "imaging/merge_math.h"

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#define FANCY_HAVE_CPUID 1
#elif defined(_M_IX86) || defined(_M_X64)
#include <intrin.h>
#define FANCY_HAVE_CPUID 1
#endif

namespace fancy {

ImagingGlobals gImaging;

namespace {

constexpr uint32_t kNoFeatures = 0x80000000u;

#ifdef FANCY_HAVE_CPUID
bool Identify(uint32_t leaf, uint32_t regs[4]) {
#if defined(_MSC_VER) && !defined(__clang__)
  int r[4];
  __cpuid(r, 0);
  if (static_cast<uint32_t>(r[0]) < leaf) return false;
  __cpuid(r, static_cast<int>(leaf));
  for (int k = 0; k < 4; ++k) regs[k] = static_cast<uint32_t>(r[k]);
  return true;
#else
  return __get_cpuid(leaf, &regs[0], &regs[1], &regs[2], &regs[3]) != 0;
#endif
}
#endif

void ReadProcessor() {
#ifdef FANCY_HAVE_CPUID
  uint32_t id[4] = {};
  if (Identify(0, id)) {
    char vendor[12];
    std::memcpy(vendor, &id[1], 4);
    std::memcpy(vendor + 4, &id[3], 4);
    std::memcpy(vendor + 8, &id[2], 4);
    uint32_t version[4] = {};
    Identify(1, version);
    ClassifyProcessor(true, vendor, (version[0] >> 8) & 0xF, version[3], &gImaging.cpuClass,
                      &gImaging.cpuFeatures);
    return;
  }
#endif
  ClassifyProcessor(false, nullptr, 0, 0, &gImaging.cpuClass, &gImaging.cpuFeatures);
}

void BuildTables() {
  uint8_t* T = gImaging.divTable;
  for (uint32_t x = 0; x <= 65025; ++x) {
    uint32_t v = x <= 32512 ? x : x - 1;
    uint32_t q = (((v >> 8) + v + 1) >> 8) & 0xFF;
    uint32_t y = (x + q) & 0xFFFF;
    T[x] = static_cast<uint8_t>(((y >> 8) + y + 1) >> 8);
  }
  std::memset(T + 65026, 0, sizeof gImaging.divTable - 65026);
  for (int i = 0; i < 256; ++i) {
    gImaging.squareTable[i] = T[i * i];
    gImaging.sqrtTable[i] = static_cast<uint8_t>(std::sqrt(i * (1.0 / 255)) * 255);
  }
}

}  // namespace

void ClassifyProcessor(bool identified, const char* vendor, uint32_t family,
                       uint32_t featureBits, int32_t* cpuClass, uint32_t* cpuFeatures) {
  uint32_t features = 0;
  if (!identified) {
    family = 4;
  } else if (std::memcmp(vendor, "GenuineIntel", 12) == 0) {
    features = featureBits & 0x8081F9u;
  } else if (std::memcmp(vendor, "AuthenticAMD", 12) == 0) {
    features = featureBits & 0x800000u;
  } else {
    family = 5;
  }
  *cpuClass = family == 6 ? 686 : family == 5 ? 586 : 486;
  *cpuFeatures = features ? features : kNoFeatures;
}

int ImagingInit() {
  if (gImaging.initCount++ == 0) {
    ReadProcessor();
    BuildTables();
  }
  return 1;
}

void ImagingShutdown() {
  if (gImaging.initCount > 0) --gImaging.initCount;
}

uint32_t DivByRule(uint32_t x) { return merge::Div(x); }
uint32_t WideDivide(uint32_t w) { return merge::WideDiv(w); }
HsvColor RgbToHsv(uint32_t red, uint32_t green, uint32_t blue) {
  return merge::ToHsv(red, green, blue);
}
void HsvToBgr(int32_t hue, int32_t saturation, int32_t value, uint8_t* bgr) {
  merge::FromHsv(hue, saturation, value, bgr);
}

}  // namespace fancy
