#include "support/config_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/color_settings.h"
#include "config/config.h"
#include "platform/registry.h"

namespace fancy::testing {

void PointConfigAt(const TempDir& temp, const std::string& configDir) {
  RegistrySetStorePath(temp.File("registry.ini"));
  ConfigSetProduct("Fancy", "8.00");
  std::string key = std::string("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\") + ConfigProduct() + "\\" +
                    ConfigVersion();
  if (!RegistryWriteString(key.c_str(), "ConfigDir", configDir.c_str()))
    ADD_FAILURE() << "cannot write the registry stand-in";
  ConfigReset();
}

void EndConfigFolder() {
  RegistrySetStorePath("");
  ConfigReset();
  ColorSettingsReset();
}

ConfigFolder::ConfigFolder(const std::string& extraAppIni) {
  std::filesystem::create_directories(temp_.File("cfg/host"));
  std::filesystem::create_directories(temp_.File("cfg/programs"));
  temp_.Write("cfg/tavinapp.ini",
              "[Config]\nPixelboxDir=host\nProgramsDir=programs\n" + extraAppIni);
  PointConfigAt(temp_, temp_.File("cfg"));
  ColorSettingsReset();
}

ConfigFolder::~ConfigFolder() { EndConfigFolder(); }

}  // namespace fancy::testing
