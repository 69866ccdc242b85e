// The command line of fancyhost.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"
#include "tile_options.h"

namespace fancy {

enum class Command { kHelp, kApply, kList, kAbout, kSetup, kSample };

struct ApplyOptions {
  int32_t filterId = 0;
  std::string input;
  std::string output;
  std::string modulePath;  // empty: the module beside fancyhost
  std::string maskPath;
  bool haveRect = false;
  int32_t rectLeft = 0, rectTop = 0, rectRight = 0, rectBottom = 0;  // right, bottom exclusive
  uint8_t foreground[3] = {0, 0, 0};        // red, green, blue
  uint8_t background[3] = {255, 255, 255};
  std::string paramsPath;
  std::string preset;  // glass, knurl: a style to choose in the dialog's list
  std::string style;  // brushka: a saved style to choose before the run
  bool noDialog = false;
  bool trace = false;
  bool quiet = false;
  bool haveMode = false;
  PixelMode mode = PixelMode::kRGB;
  TileOptions tile;  // Tessaris only
};

struct CommandLine {
  Command command = Command::kHelp;
  ApplyOptions apply;      // apply, and the effect and module of about
  std::string setupDir;    // setup: the folder, empty for the default
  std::string samplePath;  // sample: the file to write
  std::string sampleMaskPath;  // sample --mask: a selection to go with it
  int32_t sampleMaskFeather = 0;  // sample --mask-feather: its edges' width, 0 hard
  int32_t sampleWidth = 768, sampleHeight = 512;
};

// Parses argv[1..]. False with a message for a usage error.
bool ParseCommandLine(const std::vector<std::string>& args, CommandLine* line, std::string* error);

// "brushka", "tessaris", "glass", "knurl" or 200..203; 0 when unknown.
int32_t ParseEffect(const std::string& text);
const char* EffectName(int32_t filterId);

const char* UsageText();

}  // namespace fancy
