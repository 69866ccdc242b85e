#include "exit_codes.h"

#include "frame/result_codes.h"

namespace fancy {

const char* ResultMeaning(int code) {
  switch (code) {
    case kNoError: return "no error";
    case kErrOutOfMemory: return "out of memory";
    case kErrNilHandle: return "no parameters block";
    case kErrUserCancelled: return "cancelled";
    case kErrFilterFailure: return "filter failure";
    case kErrStyleFailure: return "style failure: the style file has no current style";
    case kErrReportedFailure: return "failure already reported by the effect";
    case kErrImageTooSmallRelief: return "the picture is too small for the relief effect";
  }
  return "unknown result code";
}

}  // namespace fancy
