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
#include <vector>

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
// Brings the folder that the registry names up to this fancyhost: every
// shipped file it lacks is copied in, never over a file that is there, so a
// folder set up by an earlier version gets the files added since. Nothing
// else is written. Only a folder as setup makes it (DIR/Config) is brought
// up; root gets DIR with its separator, installed the names copied
// (relative to DIR, '/' between names).
bool UpdateConfig(std::string* root, std::vector<std::string>* installed, std::string* error);

// The folder the registry names, with its trailing separator, or "".
std::string ConfiguredDir();
// The host's help file: PixelboxDir + "Pixelbx.HLP".
std::string HostHelpFile();

}  // namespace fancy
