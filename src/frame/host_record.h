// The published filter record, as the host hands it to every entry call.
//
// Field order and widths are those of the published interface. The module
// reads only a few of them; the record still carries every field up to
// advanceState so that a host built from this header lays it out the same.
// Rectangles are top, left, bottom, right with bottom and right exclusive.
#pragma once

#include <cstdint>

namespace fancy {

using Fixed = int32_t;   // signed 16.16
using OSErr = int16_t;
using Boolean = uint8_t;

struct Point16 {
  int16_t v;
  int16_t h;
};

struct Rect16 {
  int16_t top;
  int16_t left;
  int16_t bottom;  // exclusive
  int16_t right;   // exclusive
};

struct RGBColor16 {
  uint16_t red;
  uint16_t green;
  uint16_t blue;
};

// The host's window comes through the first word of platformData.
struct PlatformData {
  void* hostWindow;
};

using AbortProc = Boolean (*)();
using ProgressProc = void (*)(int32_t done, int32_t total);
using HostProc = void (*)(int16_t selector, intptr_t* data);
using AdvanceStateProc = OSErr (*)();

struct FilterRecord {
  int32_t serial;
  AbortProc abortProc;
  ProgressProc progressProc;
  char** parameters;          // the EffectRecord's ModuleHandle
  Point16 imageSize;
  int16_t planes;
  Rect16 filterRect;
  RGBColor16 background;
  RGBColor16 foreground;
  int32_t maxSpace;
  int32_t bufferSpace;
  Rect16 inRect;
  int16_t inLoPlane, inHiPlane;
  Rect16 outRect;
  int16_t outLoPlane, outHiPlane;
  void* inData;
  int32_t inRowBytes;
  void* outData;
  int32_t outRowBytes;
  Boolean isFloating, haveMask, autoMask;
  Rect16 maskRect;
  void* maskData;
  int32_t maskRowBytes;
  uint8_t backColor[4];
  uint8_t foreColor[4];
  uint32_t hostSig;
  HostProc hostProc;
  int16_t imageMode;  // 1 grey, 2 indexed, 3 RGB, 4 CMYK, 7 multichannel, 8 duotone, 9 Lab
  Fixed imageHRes, imageVRes;
  Point16 floatCoord, wholeSize;
  Fixed monitor[10];  // gamma, redX, redY, greenX, greenY, blueX, blueY, whiteX, whiteY, ambient
  PlatformData* platformData;
  void* bufferProcs;
  void* resourceProcs;
  void* processEvent;
  void* displayPixels;
  void* handleProcs;
  Boolean supportsDummyChannels, supportsAlternateLayouts;
  int16_t wantLayout, filterCase, dummyPlaneValue;
  void* premiereHook;
  AdvanceStateProc advanceState;
  uint8_t reserved[64];
};

// Image modes of the published record.
enum : int16_t {
  kModeGray = 1,
  kModeIndexed = 2,
  kModeRGB = 3,
  kModeCMYK = 4,
  kModeMultichannel = 7,
  kModeDuotone = 8,
  kModeLab = 9,
};

// Filter selectors.
enum : int16_t {
  kSelectorAbout = 0,
  kSelectorParameters = 1,
  kSelectorPrepare = 2,
  kSelectorStart = 3,
  kSelectorContinue = 4,
  kSelectorFinish = 5,
};

}  // namespace fancy
