// Result codes that the frame and the effects return to the host.
#pragma once

#include <cstdint>

namespace fancy {

enum : int16_t {
  kNoError = 0,
  kErrOutOfMemory = -108,
  kErrNilHandle = -109,          // last-error word of a freed null ModuleHandle
  kErrUserCancelled = -128,
  kErrFilterFailure = -9987,
  kErrStyleFailure = -9989,
  kErrReportedFailure = 9987,    // already shown to the user; the host shows nothing more
  kErrImageTooSmallRelief = -30100,
};

// FilterId and EffectClass, the two leading words of every EffectRecord.
enum : int32_t {
  kFilterBrushka = 200,
  kFilterTessaris = 201,
  kFilterGlass = 202,
  kFilterKnurl = 203,
};

enum : int32_t {
  kClassStroke = 1,
  kClassTile = 2,
  kClassRelief = 3,
};

}  // namespace fancy
