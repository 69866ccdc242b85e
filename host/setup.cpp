#include "setup.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/file.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "platform/registry.h"

#ifndef FANCY_DATA_DIR
#define FANCY_DATA_DIR "data"
#endif

namespace fancy {

const char kRegistryKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\Fancy\\8.00";
const char kRegistryValue[] = "ConfigDir";
const char* const kShippedBrushes[kShippedBrushCount] = {
    "round-soft.bmp", "round-hard.bmp", "flat-bristle.bmp",
    "dry-bristle.bmp", "spatter.bmp", "palette-knife.bmp"};

namespace {

std::string WithSeparator(std::string dir) {
  if (dir.empty() || !IsPathSeparator(dir.back())) dir += kPathSeparator;
  return dir;
}

bool CopyIfMissing(const std::string& from, const std::string& to, std::string* error) {
  if (FileExists(to.c_str())) return true;
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(from.c_str(), bytes)) {
    *error = "cannot read " + from;
    return false;
  }
  if (!WriteFileAtomic(to.c_str(), bytes.data(), bytes.size())) {
    *error = "cannot write " + to;
    return false;
  }
  return true;
}

}  // namespace

std::string DefaultSetupDir() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  if (xdg && *xdg) return JoinPath(JoinPath(xdg, "Tavin"), "Fancy");
  const char* home = std::getenv("HOME");
  return JoinPath(JoinPath(JoinPath(home && *home ? home : ".", ".config"), "Tavin"), "Fancy");
}

std::string DataDir() {
  const char* env = std::getenv("FANCY_DATA_DIR");
  if (env && *env) return env;
  return FANCY_DATA_DIR;
}

std::string ConfiguredDir() {
  char buffer[kMaxPath];
  if (!RegistryReadString(kRegistryKey, kRegistryValue, buffer, sizeof buffer) || !buffer[0])
    return "";
  return WithSeparator(buffer);
}

bool ConfigIsSetUp() {
  std::string dir = ConfiguredDir();
  return !dir.empty() && FileExists((dir + "tavinapp.ini").c_str());
}

bool SetupConfig(const std::string& dirIn, std::string* error) {
  std::error_code ec;
  std::string dir = std::filesystem::absolute(dirIn, ec).lexically_normal().string();
  if (ec || dir.empty()) {
    *error = "cannot use the folder " + dirIn;
    return false;
  }
  const std::string config = WithSeparator(JoinPath(dir, "Config"));
  const std::string pluginsDir = WithSeparator(JoinPath(dir, "Plugins"));
  const std::string hostDir = WithSeparator(JoinPath(dir, "Host"));
  for (const std::string& folder : {config, pluginsDir, hostDir}) {
    if (!MakeDirectories(folder.c_str())) {
      *error = "cannot create the folder " + folder;
      return false;
    }
  }
  const std::string data = JoinPath(DataDir(), "config");
  const std::string appIni = config + "tavinapp.ini";
  if (!CopyIfMissing(JoinPath(data, "tavinapp.ini"), appIni, error) ||
      !CopyIfMissing(JoinPath(data, "Color.ini"), config + "Color.ini", error))
    return false;
  // The stroke effect's style file and brushes sit in Plugins, beside Config.
  const std::string plugins = JoinPath(DataDir(), "plugins");
  const std::string brushes = WithSeparator(JoinPath(plugins, "brushes"));
  if (!CopyIfMissing(JoinPath(plugins, "brushka.ini"), pluginsDir + "brushka.ini", error))
    return false;
  if (!MakeDirectories((pluginsDir + "brushes").c_str())) {
    *error = "cannot create the folder " + pluginsDir + "brushes";
    return false;
  }
  for (const char* brush : kShippedBrushes)
    if (!CopyIfMissing(brushes + brush, WithSeparator(pluginsDir + "brushes") + brush, error))
      return false;
  if (!ProfileWriteString("Config", "PixelboxDir", hostDir.c_str(), appIni.c_str())) {
    *error = "cannot write " + appIni;
    return false;
  }
  if (!RegistryWriteString(kRegistryKey, kRegistryValue, config.c_str())) {
    *error = "cannot write the registry stand-in " + RegistryStorePath();
    return false;
  }
  return true;
}

std::string HostHelpFile() {
  std::string dir = ConfiguredDir();
  if (dir.empty()) return "";
  char hostDir[kMaxPath];
  ProfileGetString("Config", "PixelboxDir", dir.c_str(), hostDir, sizeof hostDir,
                   (dir + "tavinapp.ini").c_str());
  return WithSeparator(hostDir) + "Pixelbx.HLP";
}

}  // namespace fancy
