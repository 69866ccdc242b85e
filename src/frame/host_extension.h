// The private extension of the filter record: a 404-byte record that the
// module heads and hands to hostProc, and that the host fills with its live
// objects. Pointers are 32-bit on the platform the module was made for; on a
// 64-bit build they are native and the record grows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/host_record.h"

namespace fancy {

struct Image;           // imaging/image.h
struct DisplayContext;  // the display object, imaging
struct CLRContext;      // colour/

constexpr uint32_t kHostExtensionMagic = 0x018E6FDB;
constexpr int16_t kHostProcFill = 1;
constexpr int16_t kHostProcMenuCommand = 3;

struct HostExtension {
  uint32_t signature;              // copy of hostSig
  uint32_t version;                // always 4
  FilterRecord* filterRecord;
  Image* sourceImage;              // from host; must be non-null
  DisplayContext* displayContext;  // from host; must be non-null
  uint8_t reserved1[84];
  CLRContext* colorContext;
  uint32_t commandId;              // to host, selector 3 only
  void* hostMenu;
  int16_t hostMenuCount;           // ids past the first
  int16_t hostMenuFirstId;
  Image* maskImage;                // the selection, or null
  uint8_t reserved2[12];
  char helpFile[260];
  int16_t maskBottom;              // selection bounds in maskImage, inclusive
  int16_t maskLeft;
  int16_t maskTop;
  int16_t maskRight;
};

#if UINTPTR_MAX == 0xFFFFFFFFu
static_assert(sizeof(HostExtension) == 404, "HostExtension is 404 bytes");
static_assert(offsetof(HostExtension, colorContext) == 104);
static_assert(offsetof(HostExtension, maskImage) == 120);
static_assert(offsetof(HostExtension, helpFile) == 136);
static_assert(offsetof(HostExtension, maskBottom) == 396);
#endif

}  // namespace fancy
