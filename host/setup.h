// The configuration folder that fancyhost sets up for the module:
//
//   DIR/Config/   tavinapp.ini, Color.ini (copied from data/config/)
//   DIR/Plugins/  beside Config: the stroke effect's style file brushka.ini
//                 and its brushes in Plugins/brushes (from data/plugins/)
//   DIR/Host/     the host's folder (PixelboxDir): PLGPARAM.INI, the help file
//
// and the registry stand-in's value ConfigDir under HKEY_LOCAL_MACHINE
// "SOFTWARE\Tavin\Fancy\8.00", which the module reads to find DIR/Config.
#pragma once

#include <string>

namespace fancy {

extern const char kRegistryKey[];
extern const char kRegistryValue[];
// The brush files of data/plugins/brushes that setup installs.
constexpr int kShippedBrushCount = 6;
extern const char* const kShippedBrushes[kShippedBrushCount];

// $XDG_CONFIG_HOME/Tavin/Fancy, else $HOME/.config/Tavin/Fancy.
std::string DefaultSetupDir();
// Where the default files are: $FANCY_DATA_DIR, else the data folder of the
// source tree fancyhost was built from.
std::string DataDir();

// True when the registry names a folder that holds tavinapp.ini.
bool ConfigIsSetUp();
// Creates the folders, copies the default files where none are yet (a
// user's edits are kept: an existing style file or brush stays as it is),
// writes PixelboxDir and points the registry at it.
bool SetupConfig(const std::string& dir, std::string* error);

// The folder the registry names, with its trailing separator, or "".
std::string ConfiguredDir();
// The host's help file: PixelboxDir + "Pixelbx.HLP".
std::string HostHelpFile();

}  // namespace fancy
