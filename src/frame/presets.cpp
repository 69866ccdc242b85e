#include "frame/presets.h"

#include <cstdio>
#include <cstring>
#include <strings.h>

#include "config/config.h"
#include "config/strings.h"
#include "frame/result_codes.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

constexpr char kPresetFileName[] = "PLGPARAM.INI";
constexpr uint32_t kStrError = 1075;
constexpr uint32_t kStrNoPresets = 1085;
constexpr uint32_t kStrDefaults = 1415;
constexpr uint32_t kStrLastUsed = 1416;
constexpr uint32_t kStrDeleted = 1417;

constexpr uint32_t kKeyListSize = 255;      // the dialog's buffer of key names
constexpr uint32_t kListedValueSize = 16;   // 15 characters of each value
constexpr uint32_t kValueSize = 256;        // a whole preset value
constexpr size_t kMaxBuiltinName = 47;

// Returned for an absent key: no profile value can hold these bytes.
constexpr char kAbsent[] = "\x01\x02<absent>\x02\x01";

char gPresetPath[kMaxPath] = "";
bool gPresetPathFormed = false;

bool SameName(const char* a, const char* b) { return strcasecmp(a, b) == 0; }

void Flush(const char* path) { ProfileWriteString(nullptr, nullptr, nullptr, path); }

// Splits a built-in preset resource at its last '='. False when the text has
// no '='.
bool SplitBuiltin(const char* text, std::string* name, std::string* values) {
  const char* equals = std::strrchr(text, '=');
  if (!equals) return false;
  name->assign(text, static_cast<size_t>(equals - text));
  values->assign(equals + 1);
  return true;
}

int32_t FindName(const std::vector<std::string>& names, const char* wanted) {
  for (size_t i = 0; i < names.size(); ++i)
    if (SameName(names[i].c_str(), wanted)) return static_cast<int32_t>(i);
  return -1;
}

}  // namespace

const char* PresetFilePath() {
  if (!gPresetPathFormed) {
    char dir[kMaxPath] = "";
    GetHostDir(dir, sizeof(dir));
    AddTrailingSeparator(dir, sizeof(dir));
    std::snprintf(gPresetPath, sizeof(gPresetPath), "%s%s", dir, kPresetFileName);
    gPresetPathFormed = true;
  }
  return gPresetPath;
}

void ResetPresetFilePath() {
  gPresetPathFormed = false;
  gPresetPath[0] = '\0';
}

bool ReadNextNumber(const char** cursor, int32_t* value) {
  *value = 0;
  const char* p = *cursor;
  if (!p) return false;
  while (*p == ' ' || *p == '\t') ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = (*p++ == '-');
  int64_t number = 0;
  for (; *p >= '0' && *p <= '9'; ++p)
    if (number <= int64_t{INT32_MAX} + 1) number = number * 10 + (*p - '0');
  if (negative) number = -number;
  if (number > INT32_MAX) number = INT32_MAX;
  if (number < INT32_MIN) number = INT32_MIN;
  *value = static_cast<int32_t>(number);
  const char* comma = std::strchr(p, ',');
  *cursor = comma ? comma + 1 : nullptr;
  return true;
}

int32_t ParsePresetValues(const char* text, int32_t* values, int32_t count) {
  const char* cursor = text;
  int32_t present = 0;
  for (int32_t i = 0; i < count; ++i)
    if (ReadNextNumber(&cursor, &values[i])) ++present;
  return present;
}

std::string FormatPresetValues(const int32_t* values, int32_t count) {
  std::string text;
  char number[16];
  for (int32_t i = 0; i < count; ++i) {
    std::snprintf(number, sizeof(number), i ? ", %d" : "%d", values[i]);
    text += number;
  }
  return text;
}

bool PresetExists(const char* section, const char* name) {
  char value[sizeof(kAbsent)];
  ProfileGetString(section, name, kAbsent, value, sizeof(value), PresetFilePath());
  return std::strcmp(value, kAbsent) != 0;
}

bool ReadPreset(const char* section, const char* name, int32_t* values, int32_t count) {
  char value[kValueSize];
  ProfileGetString(section, name, kAbsent, value, sizeof(value), PresetFilePath());
  if (std::strcmp(value, kAbsent) == 0) return false;
  ParsePresetValues(value, values, count);
  return true;
}

bool WritePreset(const char* section, const char* name, const int32_t* values, int32_t count) {
  std::string text = FormatPresetValues(values, count);
  bool written = ProfileWriteString(section, name, text.c_str(), PresetFilePath());
  Flush(PresetFilePath());
  return written;
}

bool WriteLastUsedPreset(const char* section, const int32_t* values, int32_t count) {
  return WritePreset(section, LoadTempString(kStrLastUsed), values, count);
}

void SeedPresets(const char* section, uint32_t firstId, int32_t count) {
  const char* path = PresetFilePath();
  for (int32_t i = 0; i < count; ++i) {
    const char* text = FindString(firstId + static_cast<uint32_t>(i));
    std::string name, values;
    if (!text || !SplitBuiltin(text, &name, &values) || values.empty()) continue;
    if (PresetExists(section, name.c_str())) continue;
    ProfileWriteString(section, name.c_str(), values.c_str(), path);
    Flush(path);
  }
  Flush(path);
}

int16_t LoadPresetList(const char* section, PresetList* list) {
  list->names.clear();
  list->selected = -1;
  const char* path = PresetFilePath();
  char keys[kKeyListSize];
  ProfileGetString(section, nullptr, "", keys, sizeof(keys), path);
  if (keys[0] == '\0') {
    ShowMessageBox(nullptr, LoadTempString(kStrNoPresets), LoadTempString(kStrError), kMbOk);
    return kErrUserCancelled;
  }
  const char* deleted = LoadTempString(kStrDeleted);
  for (const char* key = keys; *key; key += std::strlen(key) + 1) {
    char value[kListedValueSize];
    ProfileGetString(section, key, "", value, sizeof(value), path);
    if (!SameName(value, deleted)) list->names.emplace_back(key);
  }
  if (list->names.empty()) return 0;
  list->selected = FindName(list->names, LoadTempString(kStrLastUsed));
  if (list->selected < 0) list->selected = FindName(list->names, LoadTempString(kStrDefaults));
  if (list->selected < 0) list->selected = 0;
  return 0;
}

bool IsBuiltinPreset(const char* name, uint32_t firstId) {
  for (uint32_t id = firstId;; ++id) {
    const char* text = FindString(id);
    if (!text || !*text) return false;
    std::string head(text, strnlen(text, kMaxBuiltinName));
    std::string builtin, values;
    if (!SplitBuiltin(head.c_str(), &builtin, &values)) builtin = head;
    if (SameName(builtin.c_str(), name)) return true;
  }
}

bool DeletePreset(const char* section, const char* name, uint32_t firstBuiltinId) {
  const char* path = PresetFilePath();
  const char* value = IsBuiltinPreset(name, firstBuiltinId) ? LoadTempString(kStrDeleted) : nullptr;
  bool written = ProfileWriteString(section, name, value, path);
  Flush(path);
  return written;
}

}  // namespace fancy
