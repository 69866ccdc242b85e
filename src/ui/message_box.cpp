#include "ui/message_box.h"

#include <cstdio>
#include <utility>

namespace fancy {

namespace {

MessageBoxHandler gMessageBoxHandler;

// The button a box answers when Enter is pressed: the one its default-button
// bits name, among those its type shows.
int DefaultButton(uint32_t flags) {
  constexpr int kIdAbort = 3, kIdRetry = 4, kIdIgnore = 5;
  unsigned which = (flags >> 8) & 0xF;  // 0 first button, 1 second, 2 third
  switch (flags & 0xF) {
    case 0x1:  // OK, Cancel
      return which == 1 ? int{kIdCancel} : int{kIdOk};
    case 0x2:  // Abort, Retry, Ignore
      return which == 1 ? kIdRetry : which == 2 ? kIdIgnore : kIdAbort;
    case 0x3:  // Yes, No, Cancel
      return which == 1 ? int{kIdNo} : which == 2 ? int{kIdCancel} : int{kIdYes};
    case 0x4:  // Yes, No
      return which == 1 ? int{kIdNo} : int{kIdYes};
    case 0x5:  // Retry, Cancel
      return which == 1 ? int{kIdCancel} : kIdRetry;
    default:  // OK
      return kIdOk;
  }
}

// Until a dialog backend shows boxes, they go to standard error, one marked
// line per box, and take their default answer.
int StandardErrorBox(const char* text, const char* caption, uint32_t flags) {
  std::fprintf(stderr, "[message box] %s: %s\n", caption ? caption : "", text ? text : "");
  std::fflush(stderr);
  return DefaultButton(flags);
}

}  // namespace

int ShowMessageBox(void* owner, const char* text, const char* caption, uint32_t flags) {
  if (!gMessageBoxHandler) return StandardErrorBox(text, caption, flags);
  // A copy, so that a handler may replace itself while it answers.
  MessageBoxHandler handler = gMessageBoxHandler;
  return handler(owner, text ? text : "", caption ? caption : "", flags);
}

void SetMessageBoxHandler(MessageBoxHandler handler) { gMessageBoxHandler = std::move(handler); }

}  // namespace fancy
