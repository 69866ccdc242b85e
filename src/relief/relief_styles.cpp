#include "relief/relief_styles.h"

#include <cstdio>
#include <cstring>
#include <strings.h>

#include "frame/presets.h"
#include "frame/result_codes.h"
#include "platform/profile.h"

namespace fancy {

namespace {

constexpr uint32_t kStyleValueSize = 256;

using Field = int16_t ReliefParams::*;

constexpr Field kKnurlFields[kKnurlColumns] = {
    &ReliefParams::bevelWidth, &ReliefParams::height,    &ReliefParams::smoothness,
    &ReliefParams::dropOff,    &ReliefParams::brightness, &ReliefParams::sharpness,
    &ReliefParams::direction,  &ReliefParams::angle};

constexpr Field kGlassFields[kGlassColumns] = {
    &ReliefParams::bevelWidth, &ReliefParams::refraction, &ReliefParams::colour,
    &ReliefParams::opacity,    &ReliefParams::smoothness, &ReliefParams::dropOff,
    &ReliefParams::brightness, &ReliefParams::sharpness,  &ReliefParams::direction,
    &ReliefParams::angle};

ReliefStyleScript gScript;

const Field* FieldsOf(int32_t filterId, int32_t* count) {
  *count = filterId == kFilterGlass ? kGlassColumns : kKnurlColumns;
  return filterId == kFilterGlass ? kGlassFields : kKnurlFields;
}

int16_t ToField(int32_t value) {
  return static_cast<int16_t>(value < INT16_MIN ? INT16_MIN : value > INT16_MAX ? INT16_MAX : value);
}

int32_t Find(const std::vector<std::string>& names, const char* wanted) {
  for (size_t i = 0; i < names.size(); ++i)
    if (strcasecmp(names[i].c_str(), wanted) == 0) return static_cast<int32_t>(i);
  return -1;
}

}  // namespace

ReliefStyleFile ReliefStyleFileOf(int32_t filterId) {
  if (filterId == kFilterGlass)
    return {kPresetSectionGlass, kGlassPresetFirst, kGlassPresetCount, kGlassColumns};
  return {kPresetSectionKnurl, kKnurlPresetFirst, kKnurlPresetCount, kKnurlColumns};
}

void ReliefParamsToColumns(int32_t filterId, const ReliefParams& params, int32_t* values) {
  int32_t count = 0;
  const Field* fields = FieldsOf(filterId, &count);
  for (int32_t i = 0; i < count; ++i) values[i] = params.*fields[i];
}

void ReliefParamsFromText(int32_t filterId, const char* text, ReliefParams* params) {
  int32_t count = 0;
  const Field* fields = FieldsOf(filterId, &count);
  const char* cursor = text;
  for (int32_t i = 0; i < count; ++i) {
    int32_t value = 0;
    if (!ReadNextNumber(&cursor, &value)) break;
    params->*fields[i] = ToField(value);
  }
}

int16_t ReliefStyleStep(int32_t filterId, ReliefParams* params) {
  const ReliefStyleFile file = ReliefStyleFileOf(filterId);
  const std::string chosen = gScript.style;
  gScript = ReliefStyleScript{};

  SeedPresets(file.section, file.firstBuiltin, file.builtinCount);
  PresetList list;
  int16_t listed = LoadPresetList(file.section, &list);
  if (listed != kNoError) return listed;

  int32_t selected = list.selected;
  if (!chosen.empty()) {
    selected = Find(list.names, chosen.c_str());
    if (selected < 0) {
      gScript.missing = true;
      gScript.listed = list.names;
      return kErrUserCancelled;
    }
  }
  params->effectId = filterId;
  params->presetName[0] = '\0';
  if (selected >= 0) {
    const std::string& name = list.names[static_cast<size_t>(selected)];
    char value[kStyleValueSize];
    ProfileGetString(file.section, name.c_str(), "", value, sizeof(value), PresetFilePath());
    ReliefParamsFromText(filterId, value, params);
    std::snprintf(params->presetName, sizeof(params->presetName), "%s", name.c_str());
  }

  // OK: the values go back as "Last Used"; the selection stays where it was.
  int32_t values[kReliefMaxColumns];
  ReliefParamsToColumns(filterId, *params, values);
  WriteLastUsedPreset(file.section, values, file.columns);
  params->presetIndex = selected;
  return kNoError;
}

ReliefStyleScript& ReliefDialogScript() { return gScript; }

}  // namespace fancy
