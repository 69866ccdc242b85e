#include "filter_host.h"

#include <algorithm>
#include <cstdarg>
#include <chrono>
#include <cstring>
#include <thread>

#include "image_objects.h"
#include "interrupt.h"

namespace fancy {

namespace {

// Most bytes one request may ask for.
constexpr int64_t kMaxRequestBytes = int64_t(1) << 30;
constexpr int16_t kHostParamError = -50;  // the host's "bad parameter"

FilterHost* gHost = nullptr;

constexpr uint32_t Tag(char a, char b, char c, char d) {
  return uint32_t(uint8_t(a)) << 24 | uint32_t(uint8_t(b)) << 16 | uint32_t(uint8_t(c)) << 8 |
         uint32_t(uint8_t(d));
}

bool Empty(const Rect16& r) { return r.bottom <= r.top || r.right <= r.left; }

void Trace(const FilterHost* host, const char* format, ...) __attribute__((format(printf, 2, 3)));
void Trace(const FilterHost* host, const char* format, ...) {
  if (!host->settings.trace) return;
  char line[256];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  if (host->inCall) {
    const_cast<FilterHost*>(host)->pendingTrace.append(line).push_back('\n');
    return;
  }
  std::fprintf(host->settings.traceOut, "%s\n", line);
  std::fflush(host->settings.traceOut);
}

// After a call: its own line, then the events that happened inside it.
void TraceCall(FilterHost* host, int16_t selector, int16_t result) {
  host->inCall = false;
  Trace(host, "call %d result %d", selector, result);
  if (!host->pendingTrace.empty()) {
    std::fputs(host->pendingTrace.c_str(), host->settings.traceOut);
    std::fflush(host->settings.traceOut);
    host->pendingTrace.clear();
  }
}

void TraceRequest(const FilterHost* host) {
  const FilterRecord& r = host->record;
  char mask[64] = "";
  if (!Empty(r.maskRect))
    std::snprintf(mask, sizeof mask, " mask %d %d %d %d", r.maskRect.top, r.maskRect.left,
                  r.maskRect.bottom, r.maskRect.right);
  Trace(host, "request in %d %d %d %d %d %d out %d %d %d %d %d %d%s", r.inRect.top, r.inRect.left,
        r.inRect.bottom, r.inRect.right, r.inLoPlane, r.inHiPlane, r.outRect.top, r.outRect.left,
        r.outRect.bottom, r.outRect.right, r.outLoPlane, r.outHiPlane, mask);
}

bool RequestStands(const FilterRecord& r) { return !Empty(r.inRect) || !Empty(r.outRect); }

// Takes back what was handed out for outRect, from where the record now
// says the data is.
void TakePending(FilterHost* host) {
  if (!host->outDelivered) return;
  host->outDelivered = false;
  const FilterRecord& r = host->record;
  if (!r.outData) return;
  TakePlanes(host->image, host->deliveredOut, host->deliveredOutLo, host->deliveredOutHi,
             static_cast<const uint8_t*>(r.outData), r.outRowBytes);
}

// Hands out what the record asks for now.
bool DeliverRequest(FilterHost* host) {
  FilterRecord& r = host->record;
  std::string error;
  r.inData = nullptr;
  r.inRowBytes = 0;
  if (!Empty(r.inRect)) {
    if (!DeliverPlanes(*host->image, r.inRect, r.inLoPlane, r.inHiPlane, &host->inBuffer,
                       &r.inRowBytes, &error)) {
      host->failure = "the effect asked for input rows the host cannot give: " + error;
      return false;
    }
    r.inData = host->inBuffer.data();
  }
  r.outData = nullptr;
  r.outRowBytes = 0;
  if (!Empty(r.outRect)) {
    if (!DeliverPlanes(*host->image, r.outRect, r.outLoPlane, r.outHiPlane, &host->outBuffer,
                       &r.outRowBytes, &error)) {
      host->failure = "the effect asked for output rows the host cannot take: " + error;
      return false;
    }
    r.outData = host->outBuffer.data();
    host->outDelivered = true;
    host->deliveredOut = r.outRect;
    host->deliveredOutLo = r.outLoPlane;
    host->deliveredOutHi = r.outHiPlane;
  }
  r.maskData = nullptr;
  r.maskRowBytes = 0;
  if (host->mask && r.haveMask && !Empty(r.maskRect)) {
    if (!DeliverPlanes(*host->mask, r.maskRect, 0, 0, &host->maskBuffer, &r.maskRowBytes,
                       &error)) {
      host->failure = "the effect asked for mask rows the host cannot give: " + error;
      return false;
    }
    r.maskData = host->maskBuffer.data();
  }
  return true;
}

// After a call that succeeded: take what was handed out, hand out what is
// asked for now.
bool TakeAndDeliver(FilterHost* host) {
  TakePending(host);
  // The relief effects read the selection alone, with only maskRect set.
  if (!RequestStands(host->record) && Empty(host->record.maskRect)) return true;
  TraceRequest(host);
  return DeliverRequest(host);
}

Boolean OnAbort() { return Interrupted() ? 1 : 0; }

void OnProgress(int32_t done, int32_t total) {
  FilterHost* host = gHost;
  if (!host) return;
  Trace(host, "progress %d %d", done, total);
  // Negative amounts are messages of the private host: -1 a run starts,
  // -2 a preview starts, -3 an end.
  if (done == -1 && total == 1) ProgressBarUpdate(&host->bar, 0, 1);
  else if (done == -3) ProgressBarClear(&host->bar);
  else if (done >= 0) ProgressBarUpdate(&host->bar, done, total);
}

OSErr OnAdvanceState() {
  FilterHost* host = gHost;
  if (!host) return kHostParamError;
  return TakeAndDeliver(host) ? 0 : kHostParamError;
}

void FillExtension(FilterHost* host, HostExtension* ext) {
  ext->sourceImage = host->sourceImage;
  ext->displayContext = reinterpret_cast<DisplayContext*>(&host->displayObject);
  ext->colorContext = nullptr;
  ext->hostMenu = nullptr;
  ext->hostMenuCount = 0;
  ext->hostMenuFirstId = 0;
  ext->maskImage = host->maskImage;
  std::memset(ext->helpFile, 0, sizeof ext->helpFile);
  std::strncpy(ext->helpFile, host->settings.helpFile.c_str(), sizeof ext->helpFile - 1);
  ext->maskTop = host->maskBounds[0];
  ext->maskLeft = host->maskBounds[1];
  ext->maskBottom = host->maskBounds[2];
  ext->maskRight = host->maskBounds[3];
}

void OnHostProc(int16_t selector, intptr_t* data) {
  FilterHost* host = gHost;
  if (!host) return;
  Trace(host, "hostproc %d", selector);
  if (!data) return;
  auto* ext = reinterpret_cast<HostExtension*>(data);
  if (selector == kHostProcFill) {
    FillExtension(host, ext);
  } else if (selector == kHostProcMenuCommand && !host->settings.quiet) {
    // fancyhost offers no menu of its own: the command is only noted.
    std::fprintf(stderr, "fancyhost: the effect sent menu command %u\n", ext->commandId);
  }
}

// The record's colours in the image's mode: grey first for grey, red first
// for RGB, stored inks (inverted) for CMYK.
void ColourInMode(const uint8_t rgb[3], PixelMode mode, uint8_t out[4]) {
  out[0] = out[1] = out[2] = out[3] = 0;
  switch (mode) {
    case PixelMode::kGrey: out[0] = GreyOf(rgb[0], rgb[1], rgb[2]); break;
    case PixelMode::kRGB: std::memcpy(out, rgb, 3); break;
    case PixelMode::kCMYK: {
      FilePicture one;
      one.width = one.height = 1;
      one.mode = PixelMode::kRGB;
      one.pixels.assign(rgb, rgb + 3);
      HostImage stored = ToHostImage(one, PixelMode::kCMYK);
      std::memcpy(out, stored.pixels.data(), 4);
      break;
    }
  }
}

Fixed ToFixed(double value) { return Fixed(value * 65536.0 + (value < 0 ? -0.5 : 0.5)); }

}  // namespace

bool DeliverPlanes(const HostImage& image, Rect16 rect, int16_t lo, int16_t hi,
                   std::vector<uint8_t>* buffer, int32_t* rowBytes, std::string* error) {
  if (lo < 0 || hi < lo) {
    *error = "planes " + std::to_string(lo) + ".." + std::to_string(hi);
    return false;
  }
  int64_t width = int64_t(rect.right) - rect.left, height = int64_t(rect.bottom) - rect.top;
  int64_t planes = int64_t(hi) - lo + 1;
  int64_t stride = (width * planes + 3) & ~int64_t(3);
  if (width <= 0 || height <= 0 || stride * height > kMaxRequestBytes) {
    *error = "a rectangle of " + std::to_string(width) + " x " + std::to_string(height) +
             " with " + std::to_string(planes) + " planes";
    return false;
  }
  buffer->assign(size_t(stride * height), 0);
  *rowBytes = int32_t(stride);
  const bool grey = image.planes == 1;
  for (int64_t y = 0; y < height; ++y) {
    int32_t sy = std::clamp(int32_t(rect.top + y), 0, image.height - 1);
    uint8_t* out = buffer->data() + y * stride;
    for (int64_t x = 0; x < width; ++x) {
      int32_t sx = std::clamp(int32_t(rect.left + x), 0, image.width - 1);
      const uint8_t* pixel = image.Pixel(sx, sy);
      for (int32_t p = lo; p <= hi; ++p)
        *out++ = grey ? pixel[0] : (p < image.planes ? pixel[p] : 0);
    }
  }
  return true;
}

void TakePlanes(HostImage* image, Rect16 rect, int16_t lo, int16_t hi, const uint8_t* data,
                int32_t rowBytes) {
  if (lo < 0 || hi < lo || Empty(rect)) return;
  const int32_t planes = hi - lo + 1;
  if (int64_t(rowBytes) < int64_t(rect.right - rect.left) * planes) return;
  const bool grey = image->planes == 1;
  // Planes 0..2 of a grey picture, as blue, green, red; how many of them came back.
  const int32_t colourPlanes = std::max(0, std::min<int32_t>(hi, 2) - lo + 1);
  for (int32_t y = std::max<int32_t>(rect.top, 0); y < std::min<int32_t>(rect.bottom, image->height);
       ++y) {
    const uint8_t* row = data + int64_t(y - rect.top) * rowBytes;
    for (int32_t x = std::max<int32_t>(rect.left, 0);
         x < std::min<int32_t>(rect.right, image->width); ++x) {
      const uint8_t* in = row + int64_t(x - rect.left) * planes;
      uint8_t* pixel = image->Pixel(x, y);
      if (!grey) {
        for (int32_t p = lo; p <= hi && p < image->planes; ++p) pixel[p] = in[p - lo];
        continue;
      }
      if (colourPlanes == 1) {
        pixel[0] = in[0];
      } else if (colourPlanes > 1) {
        uint8_t bgr[3] = {pixel[0], pixel[0], pixel[0]};
        for (int32_t p = lo; p <= std::min<int32_t>(hi, 2); ++p) bgr[p] = in[p - lo];
        pixel[0] = GreyOf(bgr[2], bgr[1], bgr[0]);
      }
    }
  }
}

void BlendThroughMask(const HostImage& original, const HostImage& mask, HostImage* result) {
  const size_t count = size_t(original.width) * size_t(original.height);
  const int planes = original.planes;
  for (size_t i = 0; i < count; ++i) {
    const int m = mask.pixels[i];
    const uint8_t* before = original.pixels.data() + i * planes;
    uint8_t* after = result->pixels.data() + i * planes;
    for (int p = 0; p < planes; ++p)
      after[p] = uint8_t((before[p] * (255 - m) + after[p] * m + 127) / 255);
  }
}

void FilterHostInit(FilterHost* host, HostImage* image, const HostImage* mask, Rect16 filterRect,
                    char** parameters) {
  host->image = image;
  host->mask = mask;
  host->displayObject = {Tag('F', 'H', 'D', 'C'), 24};
  if (mask) FindSelectionBounds(*mask, host->maskBounds);

  FilterRecord& r = host->record;
  r = FilterRecord{};
  r.abortProc = OnAbort;
  r.progressProc = OnProgress;
  r.parameters = parameters;
  r.imageSize = {int16_t(image->height), int16_t(image->width)};
  r.planes = int16_t(image->planes);
  r.filterRect = filterRect;
  const auto* fg = host->settings.foreground;
  const auto* bg = host->settings.background;
  r.foreground = {uint16_t(fg[0] * 257), uint16_t(fg[1] * 257), uint16_t(fg[2] * 257)};
  r.background = {uint16_t(bg[0] * 257), uint16_t(bg[1] * 257), uint16_t(bg[2] * 257)};
  ColourInMode(fg, image->mode, r.foreColor);
  ColourInMode(bg, image->mode, r.backColor);
  r.maxSpace = 256 << 20;
  r.haveMask = mask ? 1 : 0;
  r.hostSig = kHostExtensionMagic;
  r.hostProc = OnHostProc;
  r.imageMode = image->mode == PixelMode::kGrey  ? kModeGray
                : image->mode == PixelMode::kRGB ? kModeRGB
                                                 : kModeCMYK;
  r.imageHRes = r.imageVRes = 72 << 16;
  r.wholeSize = r.imageSize;
  // A monitor of the usual kind: gamma 2.2, the common primaries, D65 white.
  const double monitor[10] = {2.2, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06, 0.3127, 0.3290, 0.0};
  for (int i = 0; i < 10; ++i) r.monitor[i] = ToFixed(monitor[i]);
  host->platform.hostWindow = nullptr;  // fancyhost has no window
  r.platformData = &host->platform;
  r.advanceState = OnAdvanceState;
}

FilterRunResult FilterHostRun(FilterHost* host, const EffectCall& call, intptr_t* data) {
  FilterRunResult outcome;
  // The Images live for this run only, however it ends.
  struct RunImages {
    FilterHost* host;
    ~RunImages() {
      ImageDestroy(host->sourceImage);
      ImageDestroy(host->maskImage);
      host->sourceImage = host->maskImage = nullptr;
    }
  } images{host};
  const FilterRecord& r = host->record;
  host->sourceImage = MakePictureImage(host->image, r.imageHRes, r.imageVRes);
  if (host->mask) host->maskImage = MakeSelectionImage(host->mask, r.imageHRes, r.imageVRes);
  if (!host->sourceImage || (host->mask && !host->maskImage)) {
    host->failure = "the host could not make the image objects of the picture and its selection";
    outcome.hostFailure = true;
    return outcome;
  }
  gHost = host;
  ProgressBarInit(&host->bar, "fancyhost", host->settings.quiet);
  char** const handedIn = host->record.parameters;
  auto select = [&](int16_t selector) {
    int16_t result = 0;
    host->inCall = true;
    call(selector, &host->record, data, &result);
    TraceCall(host, selector, result);
    // A failure before selector 5 ends the run, and the module frees the
    // block it made for the run but leaves the field as it stands: what the
    // field holds now is gone. Selector 5 ends the run itself first, so a
    // block still there after it failed is alive and stays.
    if (result != 0 && selector != kSelectorFinish) host->record.parameters = handedIn;
    return result;
  };

  int16_t result = 0;
  if (!host->settings.noDialog) result = select(kSelectorParameters);
  if (result == 0) result = select(kSelectorPrepare);
  if (result == 0) {
    result = select(kSelectorStart);
    if (result == 0) {
      bool served = TakeAndDeliver(host);
      while (served && RequestStands(host->record)) {
        if (host->settings.stepDelayMs > 0)
          std::this_thread::sleep_for(std::chrono::milliseconds(host->settings.stepDelayMs));
        result = select(kSelectorContinue);
        if (result != 0) break;
        served = TakeAndDeliver(host);
      }
      if (!served) outcome.hostFailure = true;
      int16_t finish = select(kSelectorFinish);
      if (result == 0) result = finish;
    }
  }
  ProgressBarClear(&host->bar);
  if (host->record.parameters != handedIn) outcome.replacedParameters = handedIn;
  outcome.result = result;
  outcome.interrupted = Interrupted();
  gHost = nullptr;
  return outcome;
}

}  // namespace fancy
