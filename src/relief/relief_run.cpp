#include "relief/relief_run.h"

#include <algorithm>
#include <cstring>

#include "frame/host_bridge.h"
#include "frame/result_codes.h"
#include "relief/emboss.h"
#include "relief/glass.h"
#include "relief/height_field.h"
#include "relief/relief_memory.h"

namespace fancy {

namespace {

constexpr int32_t kBandBytes = 64000;
constexpr uint8_t kLeadedGrey = 128;

// The engine's state for the run under way; one run at a time.
ReliefState gRelief{};

void ReleaseRelief() {
  FreeByteMap(gRelief.mask);
  FreeHeightMap(gRelief.field);
  FreeRelief(gRelief.ring);
  FreeRelief(gRelief.windowRows);
  gRelief = ReliefState{};
}

int32_t Width(const Rect16& r) { return int32_t{r.right} - r.left; }
int32_t Height(const Rect16& r) { return int32_t{r.bottom} - r.top; }

// The tint in the pixels' byte order. The record's colours are red first;
// the host's RGB pixels are not, so bytes 0 and 2 change places there.
void GlassTint(const FilterRecord& record, int16_t colour, uint8_t tint[4]) {
  if (colour == kGlassTintLeaded) {
    std::memset(tint, kLeadedGrey, 4);
    return;
  }
  std::memcpy(tint, colour == kGlassTintPaint ? record.foreColor : record.backColor, 4);
  if (record.imageMode == kModeRGB) std::swap(tint[0], tint[2]);
}

// Asks the host for the rows now described in the record; -9987 when it
// cannot give them.
int16_t Advance(FilterRecord* record) {
  if (!record->advanceState) return kErrFilterFailure;
  return record->advanceState() == 0 ? kNoError : kErrFilterFailure;
}

// The selection under maskRect, into the mask map, band by band.
int16_t ReadHostMask(FilterRecord* record, const Rect16& maskRect) {
  ByteMap* map = gRelief.mask;
  const int32_t width = map->width;
  const int32_t rows = std::max(1, kBandBytes / width);
  for (int32_t top = 0; top < map->height; top += rows) {
    const int32_t bottom = std::min<int32_t>(top + rows, map->height);
    record->inRect = Rect16{};
    record->outRect = Rect16{};
    record->maskRect = Rect16{static_cast<int16_t>(maskRect.top + top), maskRect.left,
                              static_cast<int16_t>(maskRect.top + bottom), maskRect.right};
    int16_t advanced = Advance(record);
    if (advanced != kNoError) return advanced;
    const auto* data = static_cast<const uint8_t*>(record->maskData);
    if (!data || record->maskRowBytes < width) return kErrFilterFailure;
    for (int32_t y = top; y < bottom; ++y) {
      std::memcpy(map->rows[y], data + static_cast<intptr_t>(y - top) * record->maskRowBytes,
                  static_cast<size_t>(width));
      if (ReliefTick(&gRelief.progress)) return kErrUserCancelled;
    }
  }
  record->maskRect = Rect16{};
  return kNoError;
}

int16_t CopyPreviewMask(const ReliefJob& job) {
  ByteMap* map = gRelief.mask;
  if (!job.mask || job.maskRowBytes < map->width) return kErrFilterFailure;
  for (int32_t y = 0; y < map->height; ++y) {
    std::memcpy(map->rows[y], job.mask + static_cast<intptr_t>(y) * job.maskRowBytes,
                static_cast<size_t>(map->width));
    if (ReliefTick(&gRelief.progress)) return kErrUserCancelled;
  }
  return kNoError;
}

Fixed HighestSample(const HeightMap* field) {
  Fixed top = 0;
  for (int32_t y = 0; y < field->height; ++y)
    for (int32_t x = 0; x < field->width; ++x) top = std::max(top, field->rows[y][x]);
  return top;
}

Rect16 FilterRows(const Rect16& filter, int32_t top, int32_t bottom) {
  return Rect16{static_cast<int16_t>(filter.top + top), filter.left,
                static_cast<int16_t>(filter.top + bottom), filter.right};
}

// Room for Glass's window: the ring of source rows (not in preview, where
// the whole source is at hand) and the window's row pointers.
int16_t AllocGlassRows(const ReliefJob& job, int32_t rows, int32_t rowBytes) {
  gRelief.windowRows = static_cast<const uint8_t**>(
      AllocRelief(rows * static_cast<int32_t>(sizeof(const uint8_t*))));
  if (!gRelief.windowRows) return kErrOutOfMemory;
  if (job.isPreview) return kNoError;
  const int64_t bytes = int64_t{rows} * rowBytes;
  if (bytes > INT32_MAX) return kErrOutOfMemory;
  gRelief.ring = static_cast<uint8_t*>(AllocRelief(static_cast<int32_t>(bytes)));
  gRelief.ringRows = rows;
  return gRelief.ring ? kNoError : kErrOutOfMemory;
}

// Lights or bends the filter rectangle band by band.
int16_t RunBands(FilterRecord* record, const ReliefJob& job, const ReliefNumbers& numbers) {
  const HeightMap* field = gRelief.field;
  const Rect16 filter = record->filterRect;
  const int32_t width = field->width;
  const int32_t height = field->height;
  const int32_t planes = record->planes;
  const int32_t pixelBytes = width * planes;
  const bool glass = job.filterId == kFilterGlass;
  const int32_t bandRows = job.isPreview ? height : ReliefBandRows(planes, width);

  GlassLook look{};
  look.numbers = numbers;
  int32_t reach = 0;
  if (glass) {
    GlassTint(*record, job.params.colour, look.tint);
    // A band's rays reach into the rows round it, so that a band comes out
    // as if the whole picture were at hand.
    reach = std::min(GlassReach(numbers, HighestSample(field)), height);
    int16_t made = AllocGlassRows(job, std::min(height, bandRows + 2 * reach), pixelBytes);
    if (made != kNoError) return made;
  }

  int32_t fetched = 0;  // Glass: source rows [0, fetched) have come into the ring
  for (int32_t top = 0; top < height; top += bandRows) {
    const int32_t bottom = std::min(top + bandRows, height);
    const int32_t windowTop = std::max(0, top - reach);
    const int32_t windowBottom = std::min(height, bottom + reach);
    const uint8_t* in = static_cast<const uint8_t*>(record->inData);
    uint8_t* out = static_cast<uint8_t*>(record->outData);
    if (!job.isPreview) {
      // Glass asks only for the rows that it has not seen yet.
      const int32_t inTop = glass ? std::max(fetched, windowTop) : top;
      const int32_t inBottom = glass ? windowBottom : bottom;
      record->inRect = inTop < inBottom ? FilterRows(filter, inTop, inBottom) : Rect16{};
      record->outRect = FilterRows(filter, top, bottom);
      RequestAllPlanes(record);
      record->maskRect = Rect16{};
      int16_t advanced = Advance(record);
      if (advanced != kNoError) return advanced;
      in = static_cast<const uint8_t*>(record->inData);
      out = static_cast<uint8_t*>(record->outData);
      if (inTop < inBottom && (!in || record->inRowBytes < pixelBytes)) return kErrFilterFailure;
      if (glass) {
        for (int32_t y = inTop; y < inBottom; ++y)
          std::memcpy(gRelief.ring + static_cast<intptr_t>(y % gRelief.ringRows) * pixelBytes,
                      in + static_cast<intptr_t>(y - inTop) * record->inRowBytes,
                      static_cast<size_t>(pixelBytes));
        fetched = std::max(fetched, inBottom);
      }
    } else {
      // The preview's buffers hold the whole surface.
      if (!in || record->inRowBytes < pixelBytes) return kErrFilterFailure;
      in += static_cast<intptr_t>(top) * record->inRowBytes;
      out = out ? out + static_cast<intptr_t>(top) * record->outRowBytes : nullptr;
    }
    if (!out || record->outRowBytes < pixelBytes) return kErrFilterFailure;

    ReliefBand band{};
    band.fieldTop = top;
    band.rows = bottom - top;
    band.columns = width;
    band.planes = planes;
    band.imageMode = record->imageMode;
    band.source = glass ? nullptr : in;
    band.sourceRowBytes = record->inRowBytes;
    band.target = out;
    band.targetRowBytes = record->outRowBytes;
    int32_t done;
    if (glass) {
      const uint8_t* source = static_cast<const uint8_t*>(record->inData);
      for (int32_t y = windowTop; y < windowBottom; ++y)
        gRelief.windowRows[y - windowTop] =
            job.isPreview ? source + static_cast<intptr_t>(y) * record->inRowBytes
                          : gRelief.ring + static_cast<intptr_t>(y % gRelief.ringRows) * pixelBytes;
      const GlassWindow window{windowTop, windowBottom - windowTop, gRelief.windowRows};
      done = GlassBand(field, band, window, look, &gRelief.progress);
    } else {
      done = EmbossBand(field, band, numbers, &gRelief.progress);
    }
    if (done != kNoError) return static_cast<int16_t>(done);
  }
  return kNoError;
}

int16_t Run(FilterRecord* record, const ReliefJob& job) {
  if (record->isFloating) return kErrFilterFailure;
  const Rect16 filter = record->filterRect;
  const int32_t width = Width(filter);
  const int32_t height = Height(filter);
  const int32_t planes = record->planes;
  if (planes < 1 || planes > 4 || width < 1 || height < 1 || filter.left < 0 || filter.top < 0 ||
      filter.right > record->imageSize.h || filter.bottom > record->imageSize.v)
    return kErrFilterFailure;

  const ReliefParams params = ReliefParamsInRange(job.params, job.filterId);
  const ReliefNumbers numbers = DeriveReliefNumbers(params);

  // The selection round the filter rectangle, as far as a bevel reaches.
  Rect16 maskRect = filter;
  if (!job.isPreview) {
    const int32_t bevel = params.bevelWidth;
    maskRect.top = static_cast<int16_t>(std::max(0, filter.top - bevel));
    maskRect.left = static_cast<int16_t>(std::max(0, filter.left - bevel));
    maskRect.bottom = static_cast<int16_t>(std::min<int32_t>(record->imageSize.v, filter.bottom + bevel));
    maskRect.right = static_cast<int16_t>(std::min<int32_t>(record->imageSize.h, filter.right + bevel));
  }

  gRelief.progress.abort = job.isPreview ? job.abort : record->abortProc;
  gRelief.progress.progress = job.isPreview ? job.progress : record->progressProc;
  gRelief.progress.count = 0;
  gRelief.progress.total =
      Height(maskRect) + HeightFieldSteps(width, height, params.smoothness) + height;

  gRelief.mask = AllocByteMap(Width(maskRect), Height(maskRect), 1, 0);
  if (!gRelief.mask) return kErrOutOfMemory;
  int16_t result = job.isPreview ? CopyPreviewMask(job) : ReadHostMask(record, maskRect);
  if (result != kNoError) return result;

  gRelief.field = AllocHeightMap(width, height);
  if (!gRelief.field) return kErrOutOfMemory;
  result = BuildHeightField(&gRelief.mask, &gRelief.field, params.bevelWidth, params.smoothness,
                            params.dropOff, params.height, filter.left - maskRect.left,
                            filter.top - maskRect.top, &gRelief.progress);
  if (result != kNoError) return result;
  return RunBands(record, job, numbers);
}

}  // namespace

int32_t ReliefBandRows(int32_t planes, int32_t filterWidth) {
  const int64_t bytes = int64_t{planes} * filterWidth;
  return bytes <= 0 ? 1 : static_cast<int32_t>(std::max<int64_t>(1, kBandBytes / bytes));
}

int16_t ReliefRun(FilterRecord* record, const ReliefJob& job) {
  ReleaseRelief();
  int16_t result = Run(record, job);
  ReleaseRelief();
  if (!job.isPreview) {
    ClearRowRequest(record);
    record->maskRect = Rect16{};
  }
  return result;
}

}  // namespace fancy
