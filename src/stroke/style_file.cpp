#include "stroke/style_file.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "colour/clr_color.h"
#include "config/config.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "stroke/style_model.h"

namespace fancy {

namespace {

constexpr const char* kPresetList = "PresetList";
constexpr const char* kBrushes = "Brushes";

// Values are read with at most 180 characters; the list's keys with 80, and
// a brush button's file with 512.
constexpr uint32_t kValueSize = 181;
constexpr uint32_t kListValueSize = 81;
constexpr uint32_t kButtonValueSize = 513;
// A brush directory of 256 characters or more reads as empty.
constexpr uint32_t kDirSize = 256;
// The configuration folder ends in "Config" and a separator.
constexpr size_t kConfigFolderTail = 7;
// A NumStyles beyond this is damage, not a list: the list stops there.
constexpr int32_t kMaxListedStyles = 4096;

struct StyleFileCache {
  std::string configDir;  // the folder the path was formed from
  std::string path;
  bool formed = false;
};

StyleFileCache& Cache() {
  static StyleFileCache cache;
  return cache;
}

uint32_t Read(const char* section, const char* key, const char* fallback, char* buffer,
              uint32_t size) {
  const char* path = StyleFilePath();
  if (!path[0]) {
    std::snprintf(buffer, size, "%s", fallback ? fallback : "");
    return static_cast<uint32_t>(std::strlen(buffer));
  }
  return ProfileGetString(section, key, fallback, buffer, size, path);
}

bool Write(const char* section, const char* key, const char* value) {
  const char* path = StyleFilePath();
  return path[0] && ProfileWriteString(section, key, value, path);
}

// The style's own name as a section: StyleName up to its terminator or the
// end of the field.
std::string SectionOf(const StrokeRecord* style) {
  return std::string(style->styleName, strnlen(style->styleName, sizeof style->styleName));
}

// Copies text into a fixed field, cut to the field.
template <size_t N>
void CopyField(char (&field)[N], const char* text) {
  const size_t length = strnlen(text, N - 1);
  std::memcpy(field, text, length);
  field[length] = '\0';
}

// A bare file name hangs in the brush directory; a name with a drive or a
// directory stands as it is. "" when the result does not fit in size - 1.
std::string ResolveBrush(const char* name, size_t size) {
  char drive[kMaxDrive], dir[kMaxDir];
  SplitPath(name, drive, dir, nullptr, nullptr);
  std::string path = (drive[0] || dir[0]) ? std::string(name) : BrushDirectory() + kPathSeparator + name;
  return path.size() < size ? path : std::string();
}

// Reads "a,b,c,..." into the fields; fields past the scanned ones keep their
// values.
void ReadIntegers(const char* section, const char* key, const char* fallback,
                  int32_t* const* fields, int32_t count) {
  char text[kValueSize];
  Read(section, key, fallback, text, sizeof text);
  int32_t values[5] = {};
  int32_t n = ScanIntegers(text, values, count);
  for (int32_t i = 0; i < n; ++i) *fields[i] = values[i];
}

void ReadVariation(const char* section, const char* key, VariationControl* control) {
  // The default is longer than what is scanned; the scan stops at four.
  int32_t* const fields[] = {&control->mode, &control->first, &control->second, &control->spread};
  ReadIntegers(section, key, "0,0,0,0,0,0", fields, 4);
}

// A centre coordinate is taken only when its text is there and does not
// read as exactly 0, so that "0.00" in the file gives the prepared 0.5.
void ReadCentre(const char* section, const char* key, double* value) {
  char fallback[32];
  std::snprintf(fallback, sizeof fallback, "%.2f", *value);
  char text[kValueSize];
  Read(section, key, fallback, text, sizeof text);
  double read = ReadDecimal(text);
  if (text[0] && read != 0.0) *value = read;
}

void ReadColour(const char* section, const char* key, CLRColor* colour) {
  char text[kValueSize];
  Read(section, key, "", text, sizeof text);
  if (text[0]) CLRColorFromText(colour, text);
}

void PrepareForLoad(StrokeRecord* style) {
  CLRSetBlack(&style->brushColor);
  CLRSetBlack(&style->backgroundColor);
  style->layering = kLayeringRandom;
  style->size.mode = kChoiceNoVariation;
  style->angle.mode = kChoiceNoVariation;
  style->transparency.mode = kChoiceNoVariation;
  style->brushPath[0] = '\0';
  style->xDistVal = 0.5;
  style->yDistVal = 0.5;
  style->writeable = 1;
  style->styleDirty = 0;
}

bool WriteIntegers(const char* section, const char* key, const int32_t* values, int32_t count) {
  char text[5 * 12 + 1];
  int used = 0;
  for (int32_t i = 0; i < count; ++i)
    used += std::snprintf(text + used, sizeof text - static_cast<size_t>(used),
                          i ? ",%1d" : "%1d", values[i]);
  return Write(section, key, text);
}

bool WriteVariation(const char* section, const char* key, const VariationControl& control) {
  const int32_t values[] = {control.mode, control.first, control.second, control.spread};
  return WriteIntegers(section, key, values, 4);
}

bool WriteCentre(const char* section, const char* key, double value) {
  char text[512];
  std::snprintf(text, sizeof text, "%.2f", value);
  return Write(section, key, text);
}

bool WriteColour(const char* section, const char* key, CLRColor* colour) {
  char text[kCLRTextSize];
  CLRColorToText(colour, text, sizeof text);
  return Write(section, key, text);
}

std::string NumberedKey(const char* stem, int32_t n) {
  char key[32];
  std::snprintf(key, sizeof key, "%s%1d", stem, n);
  return key;
}

}  // namespace

const char* StyleFilePath() {
  StyleFileCache& cache = Cache();
  // A folder that is not found is told once (by ConfigDirOf), not at every
  // read of a key.
  if (cache.formed && cache.configDir.empty() && !ConfigFind(0)) return cache.path.c_str();
  char dir[kMaxPath];
  uint32_t length = ConfigDirOf(dir, sizeof dir);
  if (cache.formed && cache.configDir == dir) return cache.path.c_str();
  cache.formed = true;
  cache.configDir = dir;
  cache.path.clear();
  if (length >= kConfigFolderTail) {
    cache.path.assign(dir, length - kConfigFolderTail);
    cache.path += "Plugins";
    cache.path += kPathSeparator;
    cache.path += "brushka.ini";
  }
  return cache.path.c_str();
}

int32_t StyleLoad(StrokeRecord* style) {
  PrepareForLoad(style);

  char current[kValueSize];
  Read(kPresetList, "Current", "", current, sizeof current);
  if (!current[0]) return 0;
  // A name longer than the field is cut to it; the section read is the one
  // that Save would write.
  CopyField(style->styleName, current);
  const std::string section = SectionOf(style);
  const char* s = section.c_str();

  char text[kValueSize];
  Read(s, "BrushName", "", text, sizeof text);
  if (text[0]) CopyField(style->brushPath, ResolveBrush(text, sizeof style->brushPath).c_str());

  ReadColour(s, "ColorBrush", &style->brushColor);
  ReadColour(s, "ColorBackground", &style->backgroundColor);

  // Unlike the prepared 1, a missing key reads as 0: a style that is not in
  // the file cannot be saved over.
  Read(s, "Writeable", "0", text, sizeof text);
  ScanIntegers(text, &style->writeable, 1);

  int32_t* const brush[] = {&style->layering, &style->density, &style->seed,
                            &style->horizontalVariation, &style->verticalVariation};
  ReadIntegers(s, "BrushParms", "0,0,1,0,0", brush, 5);
  int32_t* const colour[] = {&style->brushColorMode, &style->backgroundMode, &style->hueVariation,
                             &style->saturationVariation, &style->brightnessVariation};
  ReadIntegers(s, "ColorParms", "0,0,0,0,0", colour, 5);

  ReadVariation(s, "SizeParms", &style->size);
  ReadVariation(s, "AngleParms", &style->angle);
  ReadVariation(s, "TransParms", &style->transparency);

  ReadCentre(s, "XDistVal", &style->xDistVal);
  ReadCentre(s, "YDistVal", &style->yDistVal);
  return 1;
}

int32_t StyleSave(StrokeRecord* style) {
  const std::string section = SectionOf(style);
  if (!Write(kPresetList, "Current", section.c_str())) return 0;
  if (style->writeable == 0) {
    style->styleDirty = 0;
    return 1;
  }
  const char* s = section.c_str();
  char number[16];
  std::snprintf(number, sizeof number, "%1d", style->writeable);
  const int32_t brush[] = {style->layering, style->density, style->seed,
                           style->horizontalVariation, style->verticalVariation};
  const int32_t colour[] = {style->brushColorMode, style->backgroundMode, style->hueVariation,
                            style->saturationVariation, style->brightnessVariation};
  std::string brushPath(style->brushPath, strnlen(style->brushPath, sizeof style->brushPath));
  bool ok = Write(s, "BrushName", brushPath.c_str()) &&
            WriteColour(s, "ColorBrush", &style->brushColor) &&
            WriteColour(s, "ColorBackground", &style->backgroundColor) &&
            Write(s, "Writeable", number) && WriteIntegers(s, "BrushParms", brush, 5) &&
            WriteIntegers(s, "ColorParms", colour, 5) &&
            WriteVariation(s, "SizeParms", style->size) &&
            WriteVariation(s, "AngleParms", style->angle) &&
            WriteVariation(s, "TransParms", style->transparency) &&
            WriteCentre(s, "XDistVal", style->xDistVal) &&
            WriteCentre(s, "YDistVal", style->yDistVal);
  if (!ok) return 0;
  style->styleDirty = 0;
  return 1;
}

int32_t StyleChoose(const char* name, StrokeRecord* style) {
  char text[kListValueSize];
  std::snprintf(text, sizeof text, "%s", name ? name : "");
  if (!Write(kPresetList, "Current", text)) return 0;
  return StyleLoad(style);
}

bool StyleRemove(const char* name) { return name && Write(name, nullptr, nullptr); }

void StyleListRead(StyleList* list) {
  list->names.clear();
  list->selected = -1;
  char text[kListValueSize];
  Read(kPresetList, "NumStyles", "", text, sizeof text);
  int32_t count = 0;
  ScanIntegers(text, &count, 1);
  if (count > kMaxListedStyles) count = kMaxListedStyles;
  for (int32_t n = 1; n <= count; ++n) {
    Read(kPresetList, NumberedKey("Style", n).c_str(), "", text, sizeof text);
    if (text[0]) list->names.emplace_back(text);
  }
  Read(kPresetList, "Current", "", text, sizeof text);
  for (size_t i = 0; i < list->names.size(); ++i)
    if (list->names[i] == text) {
      list->selected = static_cast<int32_t>(i);
      break;
    }
}

bool StyleListWrite(const StyleList& list) {
  char number[16];
  std::snprintf(number, sizeof number, "%1d", static_cast<int32_t>(list.names.size()));
  if (!Write(kPresetList, "NumStyles", number)) return false;
  for (size_t i = 0; i < list.names.size(); ++i)
    if (!Write(kPresetList, NumberedKey("Style", static_cast<int32_t>(i + 1)).c_str(),
               list.names[i].c_str()))
      return false;
  return true;
}

std::string BrushDirectory() {
  char dir[kDirSize];
  ProfileGetPath(kBrushes, "Dir", "", dir, sizeof dir, StyleFilePath());
  return dir;
}

uint32_t BrushButtonPath(int32_t n, char* buffer, uint32_t size) {
  if (!buffer || size == 0) return 0;
  buffer[0] = '\0';
  if (n < 1 || n > 6) return 0;
  char text[kButtonValueSize];
  Read(kBrushes, NumberedKey("Brush", n).c_str(), "", text, sizeof text);
  if (!text[0]) return 0;
  std::string path = ResolveBrush(text, size);
  std::memcpy(buffer, path.c_str(), path.size() + 1);
  return static_cast<uint32_t>(path.size());
}

int32_t ScanIntegers(const char* text, int32_t* values, int32_t count) {
  const char* p = text ? text : "";
  for (int32_t i = 0; i < count; ++i) {
    if (i > 0) {
      if (*p != ',') return i;
      ++p;
    }
    while (std::isspace(static_cast<unsigned char>(*p))) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    if (!std::isdigit(static_cast<unsigned char>(*p))) return i;
    uint32_t value = 0;
    while (std::isdigit(static_cast<unsigned char>(*p)))
      value = value * 10u + static_cast<uint32_t>(*p++ - '0');
    values[i] = static_cast<int32_t>(negative ? 0u - value : value);
  }
  return count;
}

double ReadDecimal(const char* text) {
  const char* p = text ? text : "";
  while (std::isspace(static_cast<unsigned char>(*p))) ++p;
  // Only the form that the runtime's reader knows is handed on, so that
  // words such as "inf" or "nan" and hexadecimal forms read as no number.
  std::string number;
  if (*p == '+' || *p == '-') number += *p++;
  size_t digits = 0;
  while (std::isdigit(static_cast<unsigned char>(*p))) number += *p++, ++digits;
  if (*p == '.') {
    number += *p++;
    while (std::isdigit(static_cast<unsigned char>(*p))) number += *p++, ++digits;
  }
  if (digits == 0) return 0.0;
  if (*p == 'e' || *p == 'E') {
    const char* q = p + 1;
    std::string exponent = "e";
    if (*q == '+' || *q == '-') exponent += *q++;
    if (std::isdigit(static_cast<unsigned char>(*q))) {
      while (std::isdigit(static_cast<unsigned char>(*q))) exponent += *q++;
      number += exponent;
    }
  }
  return std::strtod(number.c_str(), nullptr);
}

}  // namespace fancy
