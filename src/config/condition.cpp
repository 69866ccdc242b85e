#include "config/condition.h"

#include <cstdio>
#include <string>

#include "config/strings.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

constexpr uint32_t kStringMemoryCondition = 20777;
constexpr uint32_t kStringGeneralCondition = 20778;

// "C:\src\clrpal.cpp" or "src/colour/clrpal.cpp" names module CLRPAL.
std::string ModuleName(const char* module) {
  std::string name = module ? module : "";
  size_t slash = name.find_last_of("/\\");
  if (slash != std::string::npos) name.erase(0, slash + 1);
  size_t dot = name.rfind('.');
  if (dot != std::string::npos) name.erase(dot);
  for (char& c : name)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return name;
}

}  // namespace

void ReportCondition(int32_t code, const char* module, int32_t line, const char* caption,
                     int memoryFlag) {
  std::string name = ModuleName(module);
  char title[512];
  std::snprintf(title, sizeof title, "%s  Condition #%4.4d-%s-%4.4d", caption ? caption : "",
                static_cast<int>(code), name.c_str(), static_cast<int>(line));
  const char* text = LoadTempString(memoryFlag ? kStringMemoryCondition : kStringGeneralCondition);
  // The box of the colour layer's failures: exclamation, OK, task-modal.
  ShowMessageBox(nullptr, text, title, kMbOk | kMbIconExclamation | kMbTaskModal);
}

}  // namespace fancy
