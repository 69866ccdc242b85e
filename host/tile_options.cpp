#include "tile_options.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <vector>

#include "frame/effect_hooks.h"
#include "params_file.h"
#include "tile/tile_record.h"

namespace fancy {

namespace {

std::string Lower(const std::string& text) {
  std::string out = text;
  for (char& c : out) c = char(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// text as a number in [1, count], or the position (from 1) of its name.
int32_t NumberOrName(const std::string& text, const char* const* names, int32_t count) {
  const std::string lower = Lower(text);
  for (int32_t i = 0; i < count; ++i)
    if (lower == names[i] || lower == std::to_string(i + 1)) return i + 1;
  return 0;
}

}  // namespace

int32_t ParseTileGroup(const std::string& text) {
  static const char* const kNames[] = {"p1",  "cm",  "pm",  "p2",   "pg",   "pgg",
                                       "pmm", "p4",  "p4g", "p4m",  "cmm",  "pmg",
                                       "p3",  "p3m1", "p31m", "p6", "p6m"};
  return NumberOrName(text, kNames, 17);
}

int32_t ParseTileMode(const std::string& text) {
  static const char* const kNames[] = {"normal", "darken",     "lighten",  "hue",   "saturation",
                                       "color",  "luminosity", "multiply", "screen"};
  return NumberOrName(text, kNames, 9);
}

bool ApplyTileOptions(const TileOptions& options, char*** parameters, std::string* error) {
  if (!*parameters || !**parameters) {
    // A new block, as the effect makes it: the defaults of its Reset button.
    std::vector<uint8_t> bytes(size_t(TileRecordSize()), 0);
    auto* head = reinterpret_cast<EffectHead*>(bytes.data());
    head->filterId = kFilterTessaris;
    head->effectClass = kClassTile;
    TileCreateRecord(head);
    *parameters = MakeParamsHandle(bytes);
    if (!*parameters) {
      *error = "out of memory";
      return false;
    }
  }
  auto* record = reinterpret_cast<TileRecord*>(**parameters);
  if (options.group) record->groupId = options.group;
  if (options.mode) record->mode = options.mode;
  if (options.opacity >= 0) record->opacity = options.opacity;
  if (options.feather >= 0) record->featherPercent = options.feather;
  if (!options.source.empty()) {
    std::error_code failed;
    std::string path = std::filesystem::absolute(options.source, failed).string();
    if (failed) path = options.source;
    if (path.size() >= sizeof record->sourcePath) {
      *error = "the source path " + path + " is longer than " +
               std::to_string(sizeof record->sourcePath - 1) + " characters";
      return false;
    }
    // A picture just picked: the effect crops it and makes its first cell.
    std::memset(record->sourcePath, 0, sizeof record->sourcePath);
    std::memcpy(record->sourcePath, path.data(), path.size());
    record->sourceKind = kTileSourceFile;
    record->loadedWidth = record->loadedHeight = 0;
    record->cropSet = 0;
    record->cropLeft = record->cropTop = record->cropRight = record->cropBottom = 0;
  }
  return true;
}

}  // namespace fancy
