#include "stroke/stroke_engine.h"

#include <cstring>

#include "frame/block.h"
#include "frame/current_record.h"
#include "frame/host_bridge.h"
#include "frame/phase_bar.h"
#include "frame/result_codes.h"
#include "stroke/first_pass.h"
#include "stroke/paint_pass.h"
#include "stroke/stroke_state.h"

namespace fancy {

StrokeEngineState gStrokeEngine{};

namespace {

enum PhaseStage : int32_t { kStageStart = 0, kStageFirst = 1, kStageSecond = 2, kStageEnd = 3 };

int32_t RectWidth(const Rect16& r) { return r.right - r.left; }
int32_t RectHeight(const Rect16& r) { return r.bottom - r.top; }

}  // namespace

void StrokeEngineReset(StrokeEngineState* s) {
  const int32_t order = s->order;
  BlockFree(s->table);
  BrushMaskFree(&s->mask);
  ActiveListRelease(&s->active);
  ScanPoolRelease(&s->scans);
  *s = StrokeEngineState{};
  s->order = order;
}

int16_t StrokeEngineStart(FilterRecord* record, const StrokeRecord*) {
  SetCurrentFilterRecord(record);
  HostExtension extension;
  ReadHostExtensionIfOffered(record, &extension);
  const Rect16& rect = record->filterRect;
  if (rect.bottom > rect.top && rect.right > rect.left)
    RequestStrokeRow(record, rect.top);
  else
    ClearRowRequest(record);
  return kNoError;
}

int16_t StrokeEngineStep(FilterRecord* record, StrokeRecord* style) {
  StrokeEngineState* s = &gStrokeEngine;
  if (!s->started) {
    StrokeEngineReset(s);
    s->savedIn = record->inRect;
    s->savedOut = record->outRect;
    s->pass = kFirstPass;
    s->savedTop = record->filterRect.top;
    s->started = true;
    PhaseBarReport(record, kStageStart, 0, 1);
  }
  if (!record->inData || !record->outData) return kErrFilterFailure;
  const int32_t inRow = record->inRect.top - s->savedTop;
  s->width = RectWidth(record->filterRect);
  s->height = RectHeight(record->filterRect);

  int32_t n;
  if (s->pass == kFirstPass) {
    if (!s->prepared) {
      const int16_t prepared = FirstPassSetUp(s, style);
      if (prepared != kNoError) return prepared;
    }
    n = FirstPassStep(s, static_cast<const uint8_t*>(record->inData), inRow);
    PhaseBarReport(record, kStageFirst, inRow, s->height);
  } else {
    PaintRow(s, static_cast<uint8_t*>(record->inData), static_cast<uint8_t*>(record->outData),
             inRow);
    PhaseBarReport(record, kStageSecond, inRow, s->height);
    n = 1;
  }

  // Worked in 32 bits: a move past the rectangle's bottom ends the pass
  // rather than wrapping the 16-bit rectangle.
  const int32_t top = record->inRect.top + n, bottom = record->inRect.bottom + n;
  if (bottom <= record->filterRect.bottom && n != 0) {
    record->inRect.top = static_cast<int16_t>(top);
    record->inRect.bottom = static_cast<int16_t>(bottom);
    record->outRect = record->inRect;
    return kNoError;
  }
  if (s->pass == kFirstPass) {
    record->inRect = s->savedIn;
    record->outRect = s->savedOut;
    s->pass = kSecondPass;
    PaintPassBegin(s);
  } else {
    ClearRowRequest(record);
    PhaseBarReport(record, kStageEnd, 1, 1);
  }
  record->outRect = record->inRect;
  return kNoError;
}

void StrokeEngineRelease(FilterRecord* record) {
  StrokeEngineState* s = &gStrokeEngine;
  if (!s->started) return;
  PhaseBarReport(record, kStageEnd, 0, 1);
  StrokeEngineReset(s);
  PhaseBarReport(record, kPhaseBarEnd, 0, 1);
}

int16_t StrokePaintPicture(FilterRecord* record, StrokeRecord* style, uint8_t* pixels,
                           int32_t width, int32_t height, ptrdiff_t rowBytes) {
  if (!record || !style || !pixels || width <= 0 || height <= 0 || width > 32767 ||
      height > 32767)
    return kErrFilterFailure;
  const Rect16 savedRect = record->filterRect;
  void* const savedIn = record->inData;
  void* const savedOut = record->outData;
  const int32_t rowSize = width * 3;
  auto* in = static_cast<uint8_t*>(BlockAlloc(rowSize));
  auto* out = static_cast<uint8_t*>(BlockAlloc(rowSize));
  int16_t status = (in && out) ? kNoError : kErrOutOfMemory;

  if (status == kNoError) {
    record->filterRect = Rect16{0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
    record->inData = in;
    record->outData = out;
    status = StrokeEngineStart(record, style);
  }
  while (status == kNoError && HasRowRequest(record)) {
    // Rows as a host delivers them: the request's row in both buffers, and
    // the out row taken back where it was delivered from.
    const int32_t inRow = record->inRect.top, outRow = record->outRect.top;
    if (inRow < 0 || inRow >= height || outRow < 0 || outRow >= height) {
      status = kErrFilterFailure;
      break;
    }
    std::memcpy(in, pixels + inRow * rowBytes, static_cast<size_t>(rowSize));
    std::memcpy(out, pixels + outRow * rowBytes, static_cast<size_t>(rowSize));
    status = StrokeEngineStep(record, style);
    if (status == kNoError && record->abortProc && (record->abortProc() & 0xFF))
      status = kErrUserCancelled;
    if (status == kNoError) std::memcpy(pixels + outRow * rowBytes, out, static_cast<size_t>(rowSize));
  }
  StrokeEngineRelease(record);
  record->filterRect = savedRect;
  record->inData = savedIn;
  record->outData = savedOut;
  BlockFree(in);
  BlockFree(out);
  return status;
}

}  // namespace fancy
