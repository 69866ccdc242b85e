#include "relief/relief_preview.h"

#include <algorithm>

#include "frame/result_codes.h"
#include "imaging/image.h"
#include "relief/relief_run.h"

namespace fancy {

namespace {

constexpr int32_t kSmallestScaled = 3;

// The record's fields that a preview borrows.
struct SavedRecord {
  Point16 imageSize;
  int16_t planes;
  Rect16 filterRect, inRect, outRect, maskRect;
  int16_t inLoPlane, inHiPlane, outLoPlane, outHiPlane;
  void* inData;
  void* outData;
  void* maskData;
  int32_t inRowBytes, outRowBytes, maskRowBytes;
};

SavedRecord Save(const FilterRecord& r) {
  return {r.imageSize,  r.planes,    r.filterRect, r.inRect,     r.outRect,
          r.maskRect,   r.inLoPlane, r.inHiPlane,  r.outLoPlane, r.outHiPlane,
          r.inData,     r.outData,   r.maskData,   r.inRowBytes, r.outRowBytes,
          r.maskRowBytes};
}

void Restore(FilterRecord* r, const SavedRecord& s) {
  r->imageSize = s.imageSize, r->planes = s.planes;
  r->filterRect = s.filterRect, r->inRect = s.inRect, r->outRect = s.outRect;
  r->maskRect = s.maskRect;
  r->inLoPlane = s.inLoPlane, r->inHiPlane = s.inHiPlane;
  r->outLoPlane = s.outLoPlane, r->outHiPlane = s.outHiPlane;
  r->inData = s.inData, r->outData = s.outData, r->maskData = s.maskData;
  r->inRowBytes = s.inRowBytes, r->outRowBytes = s.outRowBytes;
  r->maskRowBytes = s.maskRowBytes;
}

// Planes of a preview image type; 0 for a type the engine does not light.
int32_t PlanesOfType(int32_t type) {
  switch (type) {
    case kImageGrey8: return 1;
    case kImageBGR24:
    case kImageLab24: return 3;
    case kImageCMYK32: return 4;
    default: return 0;
  }
}

}  // namespace

ReliefParams ScaleReliefForPreview(const ReliefParams& params, int32_t previewWidth,
                                   int32_t previewHeight, int32_t filterWidth,
                                   int32_t filterHeight) {
  ReliefParams scaled = params;
  if (filterWidth > 0)
    scaled.bevelWidth = static_cast<int16_t>(std::max<int64_t>(
        kSmallestScaled, int64_t{previewWidth} * params.bevelWidth / filterWidth));
  if (filterHeight > 0)
    scaled.height = static_cast<int16_t>(std::max<int64_t>(
        kSmallestScaled, int64_t{previewHeight} * params.height / filterHeight));
  return scaled;
}

int16_t ReliefPreview(const ReliefPreviewJob& job) {
  FilterRecord* record = job.record;
  if (!record || !job.source || !job.mask || !job.target) return kErrFilterFailure;
  const int32_t width = ImageGetWidth(job.source);
  const int32_t height = ImageGetHeight(job.source);
  const int32_t type = ImageGetType(job.source);
  const int32_t planes = PlanesOfType(type);
  const int32_t maskType = ImageGetType(job.mask);
  const uint8_t* source = ImagePixelAddress(job.source, 0, 0);
  const uint8_t* mask = ImagePixelAddress(job.mask, 0, 0);
  uint8_t* target = ImagePixelAddress(job.target, 0, 0);
  if (planes == 0 || width > INT16_MAX || height > INT16_MAX || !source || !mask || !target ||
      ImageGetType(job.target) != type || ImageGetWidth(job.target) != width ||
      ImageGetHeight(job.target) != height || (maskType != kImageGrey8 && maskType != kImageMask) ||
      ImageGetWidth(job.mask) != width || ImageGetHeight(job.mask) != height)
    return kErrFilterFailure;

  const int32_t sourceRowBytes = ImageGetRowBytes(job.source);
  const int32_t targetRowBytes = ImageGetRowBytes(job.target);
  const Rect16 filter = record->filterRect;
  ReliefJob run{};
  run.filterId = job.filterId;
  run.params = ScaleReliefForPreview(job.params, width, height, int32_t{filter.right} - filter.left,
                                     int32_t{filter.bottom} - filter.top);
  run.isPreview = true;
  run.mask = mask;
  run.maskRowBytes = ImageGetRowBytes(job.mask);
  run.abort = job.abort;
  run.progress = job.progress;

  const SavedRecord saved = Save(*record);
  const Rect16 surface{0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
  record->imageSize = Point16{surface.bottom, surface.right};
  record->planes = static_cast<int16_t>(planes);
  record->filterRect = record->inRect = record->outRect = surface;
  record->maskRect = Rect16{};
  record->inData = const_cast<uint8_t*>(source);
  record->inRowBytes = sourceRowBytes;
  record->outData = target;
  record->outRowBytes = targetRowBytes;

  if (job.progress) job.progress(-1, 100);
  int16_t result = ReliefRun(record, run);
  if (job.progress) job.progress(-3, 100);
  Restore(record, saved);
  return result;
}

}  // namespace fancy
