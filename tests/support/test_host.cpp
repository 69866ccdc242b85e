#include "support/test_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "frame/block.h"
#include "frame/entry.h"
#include "frame/module_handle.h"
#include "imaging/image.h"

namespace fancy::testing {

namespace {

TestHost* gActiveHost = nullptr;

// Stand-ins for the host's display object and window: distinct, non-null,
// never dereferenced by the frame.
alignas(16) unsigned char gStandInObjects[64];

constexpr uint8_t kPadding = 0xCD;  // fills the bytes past each row's data
constexpr int32_t kRowPadding = 8;  // rows are handed with spare bytes

int32_t PlanesOfMode(int16_t imageMode) {
  switch (imageMode) {
    case kModeRGB: return 3;
    case kModeCMYK: return 4;
    default: return 1;
  }
}

bool IsEmpty(const Rect16& r) { return !r.top && !r.left && !r.bottom && !r.right; }

// The grey that a host keeps of three planes blue, green, red; equal planes
// give their own value back.
uint8_t GreyOf(uint8_t blue, uint8_t green, uint8_t red) {
  return static_cast<uint8_t>((red * 299 + green * 587 + blue * 114 + 500) / 1000);
}

// The Image type of a host image of that many planes: grey, blue-green-red,
// or CMYK as stored.
int32_t ImageTypeOfPlanes(int32_t planes) {
  switch (planes) {
    case 3: return kImageBGR24;
    case 4: return kImageCMYK32;
    default: return kImageGrey8;
  }
}

int32_t Resolution(Fixed dotsPerInch) {
  return dotsPerInch > 0 ? static_cast<int32_t>((int64_t{dotsPerInch} * 1000 + 0x8000) >> 16)
                         : 0;
}

// An Image of `type` on the host image's packed rows; null for an empty one.
Image* ImageOnHostPixels(HostImage& host, int32_t type, const FilterRecord& record) {
  if (host.width <= 0 || host.height <= 0 || host.pixels.empty()) return nullptr;
  Image* image = ImageCreateOnBuffer(type, host.width, host.height, Resolution(record.imageHRes),
                                     Resolution(record.imageVRes), host.pixels.data());
  if (!image || ImageSetRowBytes(image, host.width * host.planes) == 0) {
    ADD_FAILURE() << "the test host cannot make an Image of type " << type;
    ImageDestroy(image);
    return nullptr;
  }
  return image;
}

// True while `image` still lies on the host image's pixels as they are.
bool LiesOn(const Image* image, const HostImage& host) {
  return image && ImageGetWidth(image) == host.width && ImageGetHeight(image) == host.height &&
         ImageGetRowBytes(image) == host.width * host.planes &&
         ImagePixelAddress(image, 0, 0) == host.pixels.data();
}

}  // namespace

void TestHost::ImageRelease::operator()(Image* image) const { ImageDestroy(image); }

struct TestHostProcs {
  static void HostProc(int16_t selector, intptr_t* data) {
    if (gActiveHost) gActiveHost->HostProc(selector, reinterpret_cast<HostExtension*>(data));
  }
  static Boolean Abort() { return gActiveHost ? gActiveHost->Abort() : 0; }
  static void Progress(int32_t done, int32_t total) {
    if (gActiveHost) gActiveHost->Progress(done, total);
  }
  static OSErr Advance() { return gActiveHost ? gActiveHost->Advance() : -1; }
};

TestHost::TestHost(int32_t filterId, int32_t width, int32_t height, int16_t imageMode)
    : filterId_(filterId) {
  if (gActiveHost) ADD_FAILURE() << "only one TestHost at a time";
  gActiveHost = this;

  image_.width = width;
  image_.height = height;
  image_.planes = PlanesOfMode(imageMode);
  image_.pixels.assign(static_cast<size_t>(width) * height * image_.planes, 0);
  FillPattern(1);

  sourceImage_.reset(ImageOnHostPixels(image_, ImageTypeOfPlanes(image_.planes), record_));
  objects_.sourceImage = sourceImage_.get();
  objects_.displayContext = reinterpret_cast<DisplayContext*>(gStandInObjects + 16);

  record_.serial = 0;
  record_.imageSize = Point16{static_cast<int16_t>(height), static_cast<int16_t>(width)};
  record_.planes = static_cast<int16_t>(image_.planes);
  record_.filterRect = Rect16{0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
  record_.imageMode = imageMode;
  record_.maxSpace = 64 << 20;
  record_.platformData = &platform_;
  platform_.hostWindow = gStandInObjects + 32;
  record_.advanceState = &TestHostProcs::Advance;
  OfferExtension(true);
  OfferProgress(true);
}

TestHost::~TestHost() {
  // The host owns what is in `parameters` and frees it when it closes.
  if (record_.parameters) ModuleHandleFree(record_.parameters);
  for (char** block : orphans_) ModuleHandleFree(block);
  if (data_) {
    ADD_FAILURE() << "the module left a RunSlot in the data slot";
    BlockFree(reinterpret_cast<void*>(data_));
  }
  gActiveHost = nullptr;
}

void TestHost::FillPattern(uint32_t seed) {
  uint32_t state = seed * 2654435761u + 12345;
  for (uint8_t& byte : image_.pixels) {
    state = state * 1103515245u + 12345;
    byte = static_cast<uint8_t>(state >> 16);
  }
}

void TestHost::SetMask(uint8_t value) {
  mask_.width = image_.width;
  mask_.height = image_.height;
  mask_.planes = 1;
  mask_.pixels.assign(static_cast<size_t>(mask_.width) * mask_.height, value);
  record_.haveMask = 1;
  maskImage_.reset(ImageOnHostPixels(mask_, kImageMask, record_));
  objects_.maskImage = maskImage_.get();
  objects_.maskBounds = Rect16{0, 0, static_cast<int16_t>(image_.height - 1),
                               static_cast<int16_t>(image_.width - 1)};
}

void TestHost::OfferExtension(bool offered) {
  record_.hostSig = offered ? kHostExtensionMagic : 0x3842494D;  // another host's signature
  record_.hostProc = offered ? &TestHostProcs::HostProc : nullptr;
}

void TestHost::SetAbort(std::function<bool(int32_t)> script) {
  abortScript_ = std::move(script);
  record_.abortProc = abortScript_ ? &TestHostProcs::Abort : nullptr;
}

void TestHost::OfferProgress(bool offered) {
  record_.progressProc = offered ? &TestHostProcs::Progress : nullptr;
}

void TestHost::ClearLog() {
  progress_.clear();
  commands_.clear();
  calls_.clear();
  hostProcCalls_ = abortCalls_ = continueCalls_ = advanceCalls_ = 0;
}

void TestHost::HostProc(int16_t selector, HostExtension* extension) {
  ++hostProcCalls_;
  if (!extension) {
    ADD_FAILURE() << "hostProc called without a record";
    return;
  }
  extensionIn_ = *extension;
  if (selector == kHostProcMenuCommand) {
    commands_.push_back(extension->commandId);
    return;
  }
  if (selector != kHostProcFill) return;
  RefreshImages();
  extension->sourceImage = objects_.sourceImage;
  extension->displayContext = objects_.displayContext;
  extension->colorContext = objects_.colorContext;
  extension->hostMenu = objects_.hostMenu;
  extension->hostMenuCount = objects_.hostMenuCount;
  extension->hostMenuFirstId = objects_.hostMenuFirstId;
  extension->maskImage = objects_.maskImage;
  std::snprintf(extension->helpFile, sizeof(extension->helpFile), "%s",
                objects_.helpFile.c_str());
  extension->maskTop = objects_.maskBounds.top;
  extension->maskLeft = objects_.maskBounds.left;
  extension->maskBottom = objects_.maskBounds.bottom;
  extension->maskRight = objects_.maskBounds.right;
}

void TestHost::RefreshImages() {
  // Objects a test put in place of the host's own are left as they are.
  if (objects_.sourceImage == sourceImage_.get() && !LiesOn(sourceImage_.get(), image_)) {
    sourceImage_.reset(ImageOnHostPixels(image_, ImageTypeOfPlanes(image_.planes), record_));
    objects_.sourceImage = sourceImage_.get();
  }
  if (maskImage_ && objects_.maskImage == maskImage_.get() && !LiesOn(maskImage_.get(), mask_)) {
    maskImage_.reset(ImageOnHostPixels(mask_, kImageMask, record_));
    objects_.maskImage = maskImage_.get();
  }
}

Boolean TestHost::Abort() {
  ++abortCalls_;
  return abortScript_ && abortScript_(abortCalls_) ? 1 : 0;
}

void TestHost::Progress(int32_t done, int32_t total) { progress_.push_back({done, total}); }

OSErr TestHost::Advance() {
  ++advanceCalls_;
  TakeBack();
  Deliver();
  return 0;
}

void TestHost::Deliver() {
  pending_ = false;
  record_.inData = record_.outData = record_.maskData = nullptr;
  const Rect16 in = record_.inRect;
  const Rect16 out = record_.outRect;
  auto inside = [&](const Rect16& r) {
    return r.top >= 0 && r.left >= 0 && r.top <= r.bottom && r.left <= r.right &&
           r.bottom <= image_.height && r.right <= image_.width;
  };
  auto planesOk = [&](int16_t lo, int16_t hi) {
    return lo >= 0 && lo <= hi && (hi < image_.planes || image_.planes == 1);
  };
  // Planes lo..hi of r's pixels of from into buffer, each row padded and one
  // byte of padding past the last; the buffer's start is handed out. A host
  // hands a grey image's one plane for every plane asked for.
  auto fill = [](const HostImage& from, const Rect16& r, int16_t lo, int16_t hi,
                 std::vector<uint8_t>& buffer, int32_t* rowBytes) {
    const int32_t n = hi - lo + 1;
    *rowBytes = (r.right - r.left) * n + kRowPadding;
    buffer.assign(static_cast<size_t>(*rowBytes) * (r.bottom - r.top) + 1, kPadding);
    for (int32_t y = r.top; y < r.bottom; ++y)
      for (int32_t x = r.left; x < r.right; ++x)
        for (int32_t q = 0; q < n; ++q)
          buffer[static_cast<size_t>(y - r.top) * *rowBytes + (x - r.left) * n + q] =
              from.at(x, y, lo + q < from.planes ? lo + q : 0);
    return buffer.data();
  };

  if (!IsEmpty(in)) {
    if (!inside(in) || !planesOk(record_.inLoPlane, record_.inHiPlane)) {
      ADD_FAILURE() << "inRect or in planes outside the image";
      return;
    }
    record_.inData =
        fill(image_, in, record_.inLoPlane, record_.inHiPlane, inBuffer_, &record_.inRowBytes);
  }
  if (!IsEmpty(out)) {
    if (!inside(out) || !planesOk(record_.outLoPlane, record_.outHiPlane)) {
      ADD_FAILURE() << "outRect or out planes outside the image";
      return;
    }
    record_.outData =
        fill(image_, out, record_.outLoPlane, record_.outHiPlane, outBuffer_, &record_.outRowBytes);
    pending_ = true;
    pendingOut_ = out;
    pendingLo_ = record_.outLoPlane;
    pendingHi_ = record_.outHiPlane;
  }
  const Rect16 m = record_.maskRect;
  if (record_.haveMask && !mask_.pixels.empty() && !IsEmpty(m)) {
    if (!inside(m)) {
      ADD_FAILURE() << "maskRect outside the image";
      return;
    }
    record_.maskData = fill(mask_, m, 0, 0, maskBuffer_, &record_.maskRowBytes);
  }
}

void TestHost::TakeBack() {
  if (!pending_) return;
  pending_ = false;
  const Rect16 out = pendingOut_;
  int32_t n = pendingHi_ - pendingLo_ + 1;
  bool greyRule = image_.planes == 1 && n > 1;
  for (int32_t y = out.top; y < out.bottom; ++y) {
    const uint8_t* row = outBuffer_.data() + static_cast<size_t>(y - out.top) * record_.outRowBytes;
    for (int32_t x = out.left; x < out.right; ++x) {
      const uint8_t* px = row + static_cast<size_t>(x - out.left) * n;
      if (greyRule) {
        // Planes 0..2 as blue, green, red; with fewer, the first stands.
        image_.at(x, y, 0) = (pendingLo_ == 0 && n >= 3) ? GreyOf(px[0], px[1], px[2]) : px[0];
        continue;
      }
      for (int32_t q = 0; q < n; ++q)
        if (pendingLo_ + q < image_.planes) image_.at(x, y, pendingLo_ + q) = px[q];
    }
  }
  // Bytes past each row's data are the host's; an effect must not write them.
  for (int32_t y = 0; y < out.bottom - out.top; ++y) {
    const uint8_t* row = outBuffer_.data() + static_cast<size_t>(y) * record_.outRowBytes;
    for (int32_t i = (out.right - out.left) * n; i < record_.outRowBytes; ++i)
      if (row[i] != kPadding) {
        ADD_FAILURE() << "the effect wrote past the row it was given (row " << y << ")";
        return;
      }
  }
}

int16_t TestHost::Call(int16_t selector) {
  if (!runActive_ && selector != kSelectorAbout) {
    runActive_ = true;
    runStart_ = record_.parameters;
  }
  if (selector == kSelectorContinue) {
    ++continueCalls_;
    Deliver();
  }
  int16_t result = 12345;
  FilterEntry(selector, &record_, &data_, &result, filterId_);
  if (result == 0)
    TakeBack();
  else
    pending_ = false;
  record_.inData = record_.outData = record_.maskData = nullptr;
  calls_.push_back({selector, result});

  // A failure or selector 5 ends the run. A block that the module made in a
  // failed run is gone; one that replaced another effect's block in a good
  // run leaves the old one to the host.
  if (runActive_ && (result != 0 || selector == kSelectorFinish)) {
    runActive_ = false;
    if (record_.parameters != runStart_) {
      if (result != 0)
        record_.parameters = runStart_;
      else if (runStart_)
        orphans_.push_back(runStart_);
    }
  }
  return result;
}

int16_t TestHost::Run() {
  int16_t result = Call(kSelectorParameters);
  if (result != 0) return result;
  return Repeat();
}

int16_t TestHost::Repeat() {
  int16_t result = Call(kSelectorPrepare);
  if (result != 0) return result;
  result = Call(kSelectorStart);
  if (result != 0) return result;
  // Enough continues for one a row per plane, and then some: an effect that
  // never ends its requests fails here instead of hanging.
  int64_t limit = int64_t{image_.height} * 4 + 16;
  while (IsEmpty(record_.inRect) == false || IsEmpty(record_.outRect) == false) {
    if (limit-- == 0) {
      ADD_FAILURE() << "the effect never ended its requests";
      Call(kSelectorFinish);
      return -1;
    }
    result = Call(kSelectorContinue);
    if (result != 0) {
      Call(kSelectorFinish);
      return result;
    }
  }
  return Call(kSelectorFinish);
}

}  // namespace fancy::testing
