// TestHost: an in-process stand-in for the host of the filter interface.
//
// It owns a FilterRecord, an image (planes interleaved, as the host keeps
// them: grey one plane, RGB three with blue first, CMYK four stored inverted,
// 255 no ink), an optional selection mask, and the data slot; it answers
// hostProc with a HostExtension whose objects are non-null, records progress
// calls and menu commands, and plays abortProc from a script. Calls go
// through FilterEntry with the host's FilterId, one selector at a time or as
// a whole run.
//
// The extension's sourceImage and maskImage are Images on the host's own
// pixels (storage kind 3, packed rows): type 5, 1 or 3 for one, three or four
// planes, type 99 for the mask; an effect that reads them sees the image as
// it stands. The host keeps them for its own life, so a test may compare
// them after a run; when a test gives image() or mask() a new buffer they are
// made again at the next hostProc.
//
// Rows move as a host moves them: before each continue (and at each
// advanceState) the host delivers the planes inLoPlane..inHiPlane of inRect
// in inData and the current pixels of outRect in outData; after the call (or
// at the next advanceState) it takes outData back into outRect. Where an
// effect asks for more planes than a grey image has, the grey goes into every
// plane asked for and comes back through the grey rule (planes 0, 1, 2 as
// blue, green, red). A request outside the image, or of planes the image
// cannot give, is a test failure.
//
// Only one TestHost may exist at a time: the host's procedures are plain
// function pointers and find it through a global.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/effect_record.h"
#include "frame/host_extension.h"
#include "frame/host_record.h"
#include "frame/run_slot.h"

namespace fancy::testing {

// A host image: width x height pixels of `planes` interleaved bytes.
struct HostImage {
  int32_t width = 0;
  int32_t height = 0;
  int32_t planes = 0;
  std::vector<uint8_t> pixels;

  uint8_t& at(int32_t x, int32_t y, int32_t plane) {
    return pixels[(static_cast<size_t>(y) * width + x) * planes + plane];
  }
  uint8_t at(int32_t x, int32_t y, int32_t plane) const {
    return pixels[(static_cast<size_t>(y) * width + x) * planes + plane];
  }
  bool operator==(const HostImage&) const = default;
};

struct ProgressCall {
  int32_t done;
  int32_t total;
  bool operator==(const ProgressCall&) const = default;
};

struct SelectorCall {
  int16_t selector;
  int16_t result;
};

// What hostProc(1) hands the module. sourceImage (and maskImage after
// SetMask) are the host's Images; displayContext is a non-null stand-in that
// the frame only carries. A test may put objects of its own in their place;
// the host then leaves them alone and never frees them.
struct HostObjects {
  Image* sourceImage;
  DisplayContext* displayContext;
  Image* maskImage = nullptr;
  CLRContext* colorContext = nullptr;
  void* hostMenu = nullptr;
  int16_t hostMenuCount = 0;
  int16_t hostMenuFirstId = 0;
  std::string helpFile = "fancy-test.hlp";
  Rect16 maskBounds{};  // top, left, bottom, right; inclusive in the extension
};

class TestHost {
 public:
  // imageMode 1 (grey), 3 (RGB) or 4 (CMYK) gives 1, 3 or 4 planes; other
  // modes get one plane. The filter rectangle is the whole image; pixels
  // start as a varied pattern.
  TestHost(int32_t filterId, int32_t width, int32_t height, int16_t imageMode);
  ~TestHost();
  TestHost(const TestHost&) = delete;
  TestHost& operator=(const TestHost&) = delete;

  FilterRecord& record() { return record_; }
  HostImage& image() { return image_; }
  HostImage& mask() { return mask_; }
  HostObjects& objects() { return objects_; }
  intptr_t& dataSlot() { return data_; }
  RunSlot* runSlot() { return reinterpret_cast<RunSlot*>(data_); }
  EffectHead* effect() { return EffectRecordOf(&record_); }
  int32_t filterId() const { return filterId_; }
  // Calls go to the entry of another effect from now on (the host keeps its
  // parameter block, as a host does when the user picks another filter).
  void UseEntry(int32_t filterId) { filterId_ = filterId; }

  // Fills the image with a deterministic pattern of the seed.
  void FillPattern(uint32_t seed);
  // Gives the host a selection: haveMask set, a mask of the image's size
  // (255 inside) delivered as maskRect asks and handed as maskImage, with
  // the whole image as its bounds.
  void SetMask(uint8_t value = 255);
  // The host's extension door: hostSig magic and hostProc, or neither.
  void OfferExtension(bool offered);
  // abortProc: null when script is empty; otherwise called with the number
  // of the call (from 1) and its answer returned.
  void SetAbort(std::function<bool(int32_t call)> script);
  // progressProc present (default) or null.
  void OfferProgress(bool offered);

  // One entry call. A run lasts from its first call to selector 5 or the
  // first failure; when a failed run had made a new parameter block, the
  // host forgets that block (the module has freed it) and keeps what it had
  // before.
  int16_t Call(int16_t selector);
  // A whole run: selectors 1..5, continue repeated while the effect asks for
  // rows. A failure in 1, 2 or 3 ends the run; a failure in 4 is followed by
  // selector 5, as a host does. Returns the first non-zero result, else 0.
  int16_t Run();
  // The last filter again without its dialog: selectors 2..5 (a host skips
  // only the dialog's selector) on the kept parameters; the data slot is
  // empty when the last run ended.
  int16_t Repeat();

  const std::vector<ProgressCall>& progress() const { return progress_; }
  const std::vector<uint32_t>& commands() const { return commands_; }
  const std::vector<SelectorCall>& calls() const { return calls_; }
  // The extension as the module headed it, at the last hostProc call.
  const HostExtension& lastExtensionIn() const { return extensionIn_; }
  int32_t hostProcCalls() const { return hostProcCalls_; }
  int32_t abortCalls() const { return abortCalls_; }
  int32_t continueCalls() const { return continueCalls_; }
  int32_t advanceCalls() const { return advanceCalls_; }
  void ClearLog();

 private:
  friend struct TestHostProcs;
  void HostProc(int16_t selector, HostExtension* extension);
  Boolean Abort();
  void Progress(int32_t done, int32_t total);
  OSErr Advance();
  void Deliver();
  void TakeBack();
  void RefreshImages();

  struct ImageRelease {
    void operator()(Image* image) const;
  };
  using OwnedImage = std::unique_ptr<Image, ImageRelease>;

  int32_t filterId_;
  FilterRecord record_{};
  PlatformData platform_{};
  intptr_t data_ = 0;
  HostImage image_;
  HostImage mask_;
  HostObjects objects_;
  OwnedImage sourceImage_, maskImage_;  // the Images this host made
  std::function<bool(int32_t)> abortScript_;

  // Buffers of the current delivery and what they were delivered for.
  std::vector<uint8_t> inBuffer_, outBuffer_, maskBuffer_;
  bool pending_ = false;
  Rect16 pendingOut_{};
  int16_t pendingLo_ = 0, pendingHi_ = 0;

  std::vector<ProgressCall> progress_;
  std::vector<uint32_t> commands_;
  std::vector<SelectorCall> calls_;
  std::vector<char**> orphans_;  // blocks the module replaced in `parameters`
  bool runActive_ = false;
  char** runStart_ = nullptr;    // `parameters` when the run began
  HostExtension extensionIn_{};
  int32_t hostProcCalls_ = 0, abortCalls_ = 0, continueCalls_ = 0, advanceCalls_ = 0;
};

}  // namespace fancy::testing
