// MessageBoxRecorder: while it lives, every message box of the module is
// recorded instead of shown, and answered with the next scripted answer
// (kIdOk when the script is used up).
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace fancy::testing {

struct RecordedBox {
  void* owner;
  std::string text;
  std::string caption;
  uint32_t flags;
};

class MessageBoxRecorder {
 public:
  MessageBoxRecorder();
  ~MessageBoxRecorder();
  MessageBoxRecorder(const MessageBoxRecorder&) = delete;
  MessageBoxRecorder& operator=(const MessageBoxRecorder&) = delete;

  void Answer(int button) { answers_.push_back(button); }
  const std::vector<RecordedBox>& boxes() const { return boxes_; }
  void Clear() { boxes_.clear(); }

 private:
  std::vector<RecordedBox> boxes_;
  std::deque<int> answers_;
};

}  // namespace fancy::testing
