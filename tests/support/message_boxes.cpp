#include "support/message_boxes.h"

#include "ui/message_box.h"

namespace fancy::testing {

MessageBoxRecorder::MessageBoxRecorder() {
  SetMessageBoxHandler([this](void* owner, const char* text, const char* caption, uint32_t flags) {
    boxes_.push_back({owner, text ? text : "", caption ? caption : "", flags});
    if (answers_.empty()) return static_cast<int>(kIdOk);
    int answer = answers_.front();
    answers_.pop_front();
    return answer;
  });
}

MessageBoxRecorder::~MessageBoxRecorder() { SetMessageBoxHandler(nullptr); }

}  // namespace fancy::testing
