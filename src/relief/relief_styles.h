// The relief effects' styles in PLGPARAM.INI: which section and built-in
// strings belong to which effect, the column order of each effect's values,
// and the style step that stands in for the dialogs until they exist.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "relief/relief_params.h"

namespace fancy {

// Columns of a style's value: The Knurl width, height, smoothness, dropOff,
// brightness, sharpness, direction, angle; Glass bevelWidth, refraction,
// colour, opacity, smoothness, dropOff, brightness, sharpness, direction,
// angle.
constexpr int32_t kKnurlColumns = 8;
constexpr int32_t kGlassColumns = 10;
constexpr int32_t kReliefMaxColumns = 10;

struct ReliefStyleFile {
  const char* section;
  uint32_t firstBuiltin;  // the first string of the built-in styles
  int32_t builtinCount;
  int32_t columns;
};

// The effect's section, built-in strings and columns (The Knurl for any id
// but Glass's). A style is deleted with DeletePreset(section, name,
// firstBuiltin): Glass's own strings, so that every built-in Glass style is
// kept as "<deleted>" and not seeded again.
ReliefStyleFile ReliefStyleFileOf(int32_t filterId);

// The settings as a style's numbers, in the effect's column order.
void ReliefParamsToColumns(int32_t filterId, const ReliefParams& params, int32_t* values);

// Reads a style's value over the settings: the numbers that are there
// replace their fields (a damaged piece reads as 0); fields past the last
// number stay as they are.
void ReliefParamsFromText(int32_t filterId, const char* text, ReliefParams* params);

// The style step of a relief dialog opened and closed with OK untouched:
// seeds the built-in styles, lists the section (a section without keys is
// told to the user and gives -128), selects "Last Used", else "Defaults",
// else the first, or the style that a script chose (see below), loads it
// over the record, and writes the record's values back as "Last Used". The
// list position and name of the selection are kept in the record. Returns 0
// or -128.
int16_t ReliefStyleStep(int32_t filterId, ReliefParams* params);

// The headless dialog's script: a style to choose in the list, as the user
// would, at the next style step. When the list has no such style the step
// ends as Cancel (-128), writes nothing, sets missing and leaves the list's
// names in listed. The step clears style either way.
struct ReliefStyleScript {
  std::string style;
  bool missing = false;
  std::vector<std::string> listed;
};
ReliefStyleScript& ReliefDialogScript();

}  // namespace fancy
