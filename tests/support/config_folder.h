// ConfigFolder: a configuration folder of its own for one test, in a
// temporary place and found through a registry stand-in of its own, so that
// nothing of the machine's own configuration is read. tavinapp.ini names the
// host's directory (PixelboxDir) "host" and ProgramsDir "programs", both
// inside the folder. Everything is forgotten again at the end.
#pragma once

#include <string>

#include "support/temp_dir.h"

namespace fancy::testing {

// The steps under ConfigFolder, for fixtures that lay out a folder of their
// own: a registry stand-in in temp's registry.ini names configDir as the
// product's configuration folder, and the configuration forgets what it
// had found. EndConfigFolder lets go of the stand-in and forgets again,
// colour settings too.
void PointConfigAt(const TempDir& temp, const std::string& configDir);
void EndConfigFolder();

class ConfigFolder {
 public:
  // extraAppIni: more lines for tavinapp.ini, after the "[Config]" keys.
  explicit ConfigFolder(const std::string& extraAppIni = "");
  ~ConfigFolder();
  ConfigFolder(const ConfigFolder&) = delete;
  ConfigFolder& operator=(const ConfigFolder&) = delete;

  // Each with its trailing separator.
  std::string dir() const { return temp_.File("cfg") + "/"; }
  std::string hostDir() const { return temp_.File("cfg/host") + "/"; }
  std::string programsDir() const { return temp_.File("cfg/programs") + "/"; }
  const TempDir& temp() const { return temp_; }

 private:
  TempDir temp_;
};

}  // namespace fancy::testing
