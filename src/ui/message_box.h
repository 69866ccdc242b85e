// Message boxes. The dialog runtime owns the real service; until a backend
// answers, a box is written to the standard error of the process (caption and
// text, clearly marked) and answered with its default button.
#pragma once

#include <cstdint>
#include <functional>

namespace fancy {

// Windows MB_* flags and ID* answers, as the system uses them.
enum : uint32_t {
  kMbOk = 0x0,
  kMbOkCancel = 0x1,
  kMbYesNoCancel = 0x3,
  kMbYesNo = 0x4,
  kMbIconHand = 0x10,
  kMbIconQuestion = 0x20,
  kMbIconExclamation = 0x30,
  kMbIconAsterisk = 0x40,
  kMbDefButton2 = 0x100,
  kMbSystemModal = 0x1000,
  kMbTaskModal = 0x2000,
};
enum : int { kIdOk = 1, kIdCancel = 2, kIdYes = 6, kIdNo = 7 };

// Shows a box and returns the button pressed. owner may be null.
int ShowMessageBox(void* owner, const char* text, const char* caption, uint32_t flags);

// The handler that answers boxes: tests and the host stand-in install their
// own; an empty function returns to the standard-error default.
using MessageBoxHandler =
    std::function<int(void* owner, const char* text, const char* caption, uint32_t flags)>;
void SetMessageBoxHandler(MessageBoxHandler handler);

}  // namespace fancy
