// The messages of the source files, and the crop of a loaded picture.
#include <cstdio>

#include "config/strings.h"
#include "tile/source_file.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

// The message is formatted into a buffer of this size, as the box shows it.
constexpr size_t kMessageSize = 200;

uint32_t MessageRowOf(int16_t code) {
  switch (code) {
    case kSourceFileNotBmp:
    case kSourceFileNotBmpToo: return kStrNotValidSource;
    case kSourceFileReadError: return kStrReadError;
    case kSourceFileOpenError: return kStrOpenError;
    case kSourceFileNoMemory: return kStrLowMemory;
    default: return 0;
  }
}

// The row's text with its one "%s" replaced by the path; no other
// conversion of the text is read, whatever it holds.
void FormatWithPath(const char* pattern, const char* path, char* out, size_t size) {
  size_t n = 0;
  auto put = [&](char c) {
    if (n + 1 < size) out[n++] = c;
  };
  for (const char* p = pattern; *p; ++p) {
    if (p[0] == '%' && p[1] == 's') {
      for (const char* q = path; *q; ++q) put(*q);
      ++p;
    } else {
      put(*p);
    }
  }
  out[n] = '\0';
}

}  // namespace

void ShowFileError(void* dialog, const char* path, int16_t code) {
  const uint32_t row = MessageRowOf(code);
  if (row == 0) return;
  const char* pattern = FindString(row);
  char text[kMessageSize];
  FormatWithPath(pattern ? pattern : "", path ? path : "", text, sizeof text);
  ShowMessageBox(dialog, text, LoadTempString(kStrTessarisWarning), kMbOk | kMbIconExclamation);
}

bool ComputeSourceCrop(int32_t loadedWidth, int32_t loadedHeight, int32_t filteredWidth,
                       int32_t filteredHeight, SourceCrop* crop) {
  const bool cutWidth = loadedWidth > filteredWidth;
  const bool cutHeight = loadedHeight > filteredHeight;
  crop->left = cutWidth ? (loadedWidth - filteredWidth) / 2 : 0;
  crop->right = cutWidth ? crop->left + filteredWidth : loadedWidth;
  crop->top = cutHeight ? (loadedHeight - filteredHeight) / 2 : 0;
  crop->bottom = cutHeight ? crop->top + filteredHeight : loadedHeight;
  return !cutWidth && !cutHeight;
}

}  // namespace fancy
