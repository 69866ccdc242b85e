#include "support/config_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/color_settings.h"
#include "config/config.h"
#include "platform/registry.h"

namespace fancy::testing {

ConfigFolder::ConfigFolder(const std::string& extraAppIni) {
  std::filesystem::create_directories(temp_.File("cfg/host"));
  std::filesystem::create_directories(temp_.File("cfg/programs"));
  temp_.Write("cfg/tavinapp.ini",
              "[Config]\nPixelboxDir=host\nProgramsDir=programs\n" + extraAppIni);
  RegistrySetStorePath(temp_.File("registry.ini"));
  ConfigSetProduct("Fancy", "8.00");
  std::string key = std::string("HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\") + ConfigProduct() + "\\" +
                    ConfigVersion();
  if (!RegistryWriteString(key.c_str(), "ConfigDir", temp_.File("cfg").c_str()))
    ADD_FAILURE() << "cannot write the registry stand-in";
  ConfigReset();
  ColorSettingsReset();
}

ConfigFolder::~ConfigFolder() {
  RegistrySetStorePath("");
  ConfigReset();
  ColorSettingsReset();
}

}  // namespace fancy::testing
