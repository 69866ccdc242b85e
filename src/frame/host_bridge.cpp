#include "frame/host_bridge.h"

#include <algorithm>
#include <cstring>

#include "frame/colour_sync.h"

namespace fancy {

namespace {

constexpr uint32_t kHostExtensionVersion = 4;

bool HostOffersExtension(const FilterRecord* record) {
  return record->hostSig == kHostExtensionMagic && record->hostProc != nullptr;
}

void CallHostProc(FilterRecord* record, int16_t selector, HostExtension* extension) {
  if (record->hostProc)
    record->hostProc(selector, reinterpret_cast<intptr_t*>(extension));
}

int32_t RectHeight(const Rect16& r) { return int32_t{r.bottom} - r.top; }
int32_t RectWidth(const Rect16& r) { return int32_t{r.right} - r.left; }

}  // namespace

void HeadHostExtension(HostExtension* extension, FilterRecord* record) {
  std::memset(extension, 0, sizeof(HostExtension));
  extension->signature = record ? record->hostSig : 0;
  extension->version = kHostExtensionVersion;
  extension->filterRecord = record;
}

void ReadHostExtension(FilterRecord* record, HostExtension* extension) {
  HeadHostExtension(extension, record);
  if (record) CallHostProc(record, kHostProcFill, extension);
}

bool ReadHostExtensionIfOffered(FilterRecord* record, HostExtension* extension) {
  HeadHostExtension(extension, record);
  if (!record || !HostOffersExtension(record)) return false;
  CallHostProc(record, kHostProcFill, extension);
  return true;
}

HostExtension ReadHostExtensionForDialog(FilterRecord* record) {
  HostExtension extension;
  if (ReadHostExtensionIfOffered(record, &extension)) SyncHostColours(extension);
  return extension;
}

void SendHostCommand(FilterRecord* record, uint32_t commandId) {
  if (!record || !HostOffersExtension(record)) return;
  HostExtension extension;
  HeadHostExtension(&extension, record);
  extension.commandId = commandId;
  CallHostProc(record, kHostProcMenuCommand, &extension);
}

void CopyHelpFile(const HostExtension& extension, char* out, uint32_t size) {
  if (!out || size == 0) return;
  size_t limit = std::min<size_t>(size - 1, sizeof(extension.helpFile) - 1);
  size_t length = strnlen(extension.helpFile, limit);
  std::memcpy(out, extension.helpFile, length);
  out[length] = '\0';
}

void RequestRows(FilterRecord* record, int16_t top, int16_t bottom, int16_t loPlane,
                 int16_t hiPlane) {
  Rect16 rows{top, record->filterRect.left, bottom, record->filterRect.right};
  record->inRect = rows;
  record->outRect = rows;
  record->inLoPlane = loPlane;
  record->inHiPlane = hiPlane;
  record->outLoPlane = loPlane;
  record->outHiPlane = hiPlane;
}

void RequestAllPlanes(FilterRecord* record) {
  record->inLoPlane = record->outLoPlane = 0;
  record->inHiPlane = record->outHiPlane = static_cast<int16_t>(record->planes - 1);
}

void RequestStrokeRow(FilterRecord* record, int16_t row) {
  RequestRows(record, row, static_cast<int16_t>(row + 1), 0, 2);
}

void ClearRowRequest(FilterRecord* record) {
  record->inRect = Rect16{};
  record->outRect = Rect16{};
  record->inLoPlane = record->inHiPlane = 0;
  record->outLoPlane = record->outHiPlane = 0;
}

bool HasRowRequest(const FilterRecord* record) {
  const Rect16& in = record->inRect;
  const Rect16& out = record->outRect;
  return in.top || in.left || in.bottom || in.right || out.top || out.left || out.bottom ||
         out.right;
}

void PassRowsThrough(FilterRecord* record) {
  if (!record->inData || !record->outData || record->inData == record->outData) return;
  int32_t rows = std::min(RectHeight(record->inRect), RectHeight(record->outRect));
  int32_t inBytes =
      RectWidth(record->inRect) * (int32_t{record->inHiPlane} - record->inLoPlane + 1);
  int32_t outBytes =
      RectWidth(record->outRect) * (int32_t{record->outHiPlane} - record->outLoPlane + 1);
  int32_t bytes = std::min(inBytes, outBytes);
  if (rows <= 0 || bytes <= 0) return;
  const auto* in = static_cast<const uint8_t*>(record->inData);
  auto* out = static_cast<uint8_t*>(record->outData);
  for (int32_t y = 0; y < rows; ++y)
    std::memcpy(out + static_cast<intptr_t>(y) * record->outRowBytes,
                in + static_cast<intptr_t>(y) * record->inRowBytes, static_cast<size_t>(bytes));
}

}  // namespace fancy
