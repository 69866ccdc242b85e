// The host side of one filter run: the filter record, the rows delivered and
// taken as inRect, outRect, maskRect and the planes ask (after each call and
// at advanceState), abortProc, progressProc and hostProc with its extension.
//
// The published procedures carry no context, so one FilterHost is current at
// a time (there is one run at a time, as the module expects).
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "frame/host_extension.h"
#include "frame/host_record.h"
#include "picture.h"
#include "progress_bar.h"

namespace fancy {

// The display object the extension hands out: fancyhost's own record, which
// shows nothing, until it has a display of the image model.
struct HostDisplayObject {
  uint32_t tag;             // "FHDC"
  int32_t bitsPerPixel;
};

// Calls one selector of the effect; writes the result word.
using EffectCall = std::function<void(int16_t selector, FilterRecord* record, intptr_t* data,
                                      int16_t* result)>;

struct FilterHostSettings {
  bool trace = false;
  bool quiet = false;
  bool noDialog = false;
  std::FILE* traceOut = stdout;
  std::string helpFile;
  uint8_t foreground[3] = {0, 0, 0};  // red, green, blue
  uint8_t background[3] = {255, 255, 255};
  // Test hook: a pause before every continue call, so that a test can
  // interrupt a run that is surely still going.
  int stepDelayMs = 0;
};

struct FilterHost {
  FilterHostSettings settings;
  FilterRecord record{};
  PlatformData platform{};
  HostImage* image = nullptr;       // the working picture; the run changes it
  const HostImage* mask = nullptr;  // grey selection of the same size, or null
  // The picture and the selection as Images on their pixels (see
  // image_objects.h); they exist while FilterHostRun runs.
  Image* sourceImage = nullptr;
  Image* maskImage = nullptr;
  HostDisplayObject displayObject{};
  int16_t maskBounds[4] = {0, 0, -1, -1};  // top, left, bottom, right, inclusive

  std::vector<uint8_t> inBuffer, outBuffer, maskBuffer;
  bool outDelivered = false;
  Rect16 deliveredOut{};
  int16_t deliveredOutLo = 0, deliveredOutHi = -1;

  // Trace lines of events inside a call wait here, so that they follow the
  // line of the call they belong to.
  bool inCall = false;
  std::string pendingTrace;

  std::string failure;  // a request the host could not serve
  ProgressBar bar;
};

// Sets up the record for the picture: size, planes, mode, filter rectangle,
// colours, mask, the procedures. parameters is the handle the host keeps.
void FilterHostInit(FilterHost* host, HostImage* image, const HostImage* mask, Rect16 filterRect,
                    char** parameters);

// The outcome of a run.
struct FilterRunResult {
  int16_t result = 0;       // the module's code (0 when it succeeded)
  bool hostFailure = false; // the module asked for something the host refused
  bool interrupted = false; // Ctrl-C came during the run
  // The block the host handed in `parameters` when the module put one of
  // its own in its place for good (the handed one was another effect's):
  // the host's to free. Null otherwise.
  char** replacedParameters = nullptr;
};

// Runs selectors 1 (unless noDialog), 2, 3, then 4 while a request stands,
// and 5 when 3 succeeded. data is the module's data slot. The Images of the
// picture and the selection are made before the first call and destroyed
// after the last; when they cannot be made nothing is called.
//
// `parameters` is taken back after a call of selectors 1 to 4 that fails:
// the module has freed a block that it made in this run, so the record
// holds the block the host handed in again (or null), and neither selector 5
// after a failed continue nor the host sees the freed one. Afterwards the
// record holds the block the host keeps from then on.
FilterRunResult FilterHostRun(FilterHost* host, const EffectCall& call, intptr_t* data);

// Serving a request, exposed for tests: fills buffer with rect and planes
// lo..hi of the image, rowBytes apart; pixels outside the picture repeat
// its edge. The grey of a grey picture fills every plane asked for.
bool DeliverPlanes(const HostImage& image, Rect16 rect, int16_t lo, int16_t hi,
                   std::vector<uint8_t>* buffer, int32_t* rowBytes, std::string* error);
// Takes rect and planes lo..hi back from data; pixels outside the picture and
// planes it lacks are dropped. On a grey picture several planes give the grey
// of blue, green, red (planes 0, 1, 2); one plane is taken as it stands.
void TakePlanes(HostImage* image, Rect16 rect, int16_t lo, int16_t hi, const uint8_t* data,
                int32_t rowBytes);

// Blends result into original through the mask: m/255 of the result.
void BlendThroughMask(const HostImage& original, const HostImage& mask, HostImage* result);

}  // namespace fancy
