#include "colour/colour_report.h"

#include "config/condition.h"
#include "config/strings.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

const char* TextOf(uint32_t id) {
  const char* text = FindString(id);
  return text ? text : "";
}

}  // namespace

void ReportColourFileError(uint32_t verbId, const char* path) {
  // The template's two "%s" take the verb and the path. It is expanded here
  // rather than handed to printf, so a path holding "%" is shown as it is.
  const char* args[2] = {TextOf(verbId), path ? path : ""};
  char text[600];
  size_t n = 0;
  int next = 0;
  for (const char* p = TextOf(kStrFileErrorTemplate); *p && n + 1 < sizeof text; ++p) {
    if (p[0] == '%' && p[1] == 's' && next < 2) {
      for (const char* a = args[next++]; *a && n + 1 < sizeof text; ++a) text[n++] = *a;
      ++p;
    } else {
      text[n++] = *p;
    }
  }
  text[n] = '\0';
  ShowMessageBox(nullptr, text, TextOf(kStrColorManagerCaption),
                 kMbOk | kMbIconExclamation | kMbTaskModal);
}

void ReportColourCondition(int32_t code, const char* module, int32_t line) {
  ReportCondition(code, module, line, TextOf(kStrColorManagerCaption), 1);
}

}  // namespace fancy
