// How the colour layer tells the user of a failure: a file that could not be
// opened, read or written is one message box; memory that could not be had is
// a condition.
#pragma once

#include <cstdint>

namespace fancy {

// String ids of the colour layer's messages.
enum : uint32_t {
  kStrColorManagerCaption = 6301,  // "Tavin Color Manager"
  kStrFileErrorTemplate = 6302,    // "Error %s %s file."
  kStrVerbOpening = 6303,
  kStrVerbReading = 6304,
  kStrVerbWriting = 6305,
};

// "Error <verb> <path> file." under the caption "Tavin Color Manager", with
// an exclamation icon and OK, task-modal.
void ReportColourFileError(uint32_t verbId, const char* path);

// A memory condition (1000 not obtained, 1001 not locked, 1002 not resized)
// raised in module at line, under the colour layer's caption.
void ReportColourCondition(int32_t code, const char* module, int32_t line);

}  // namespace fancy
