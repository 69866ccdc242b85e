// Tessaris's settings from the command line, for runs without its dialog:
// each option sets the parameters block's field as the dialog's control
// would (the Symmetry chooser, the Mode list, the Opacity and Feather
// sliders, "New Image..." in the Source list).
#pragma once

#include <cstdint>
#include <string>

namespace fancy {

struct TileOptions {
  int32_t group = 0;      // 1..17, 0 when not given
  int32_t mode = 0;       // 1..9, 0 when not given
  int32_t opacity = -1;   // 1..100, -1 when not given
  int32_t feather = -1;   // 0..100, -1 when not given
  std::string source;     // a BMP file, empty when not given

  bool Any() const { return group || mode || opacity >= 0 || feather >= 0 || !source.empty(); }
};

// "p4g", "P4G" or "9" and the like; 0 when unknown.
int32_t ParseTileGroup(const std::string& text);
// "normal" .. "screen" or "1" .. "9"; 0 when unknown.
int32_t ParseTileMode(const std::string& text);

// Writes the options into the tile parameters block *parameters, making the
// block with the effect's defaults when there is none. False with a message
// when the block cannot be made or the source path is too long.
bool ApplyTileOptions(const TileOptions& options, char*** parameters, std::string* error);

}  // namespace fancy
