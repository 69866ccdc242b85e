#include "setup.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

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

// '/' between names, as the table below writes them, to the platform's.
std::string Native(std::string path) {
  for (char& c : path)
    if (c == '/') c = kPathSeparator;
  return path;
}

// A file that fancyhost ships: where it lies in the data folder, and where
// it goes in a configuration folder.
struct ShippedFile {
  std::string from, to;
};

std::vector<ShippedFile> ShippedFiles() {
  std::vector<ShippedFile> files = {
      {"config/tavinapp.ini", "Config/tavinapp.ini"},
      {"config/Color.ini", "Config/Color.ini"},
      // The stroke effect's style file and brushes sit in Plugins, beside Config.
      {"plugins/brushka.ini", "Plugins/brushka.ini"},
  };
  for (const char* brush : kShippedBrushes)
    files.push_back({std::string("plugins/brushes/") + brush, std::string("Plugins/brushes/") + brush});
  return files;
}

// Copies every shipped file that the folder root (with its separator)
// lacks, making the folders on the way; a file that is there stays as it is,
// edits and all. The names copied, relative to root, go to installed.
bool InstallMissingFiles(const std::string& root, std::vector<std::string>* installed,
                         std::string* error) {
  const std::string data = WithSeparator(DataDir());
  for (const ShippedFile& file : ShippedFiles()) {
    const std::string to = root + Native(file.to);
    if (FileExists(to.c_str())) continue;
    const std::string folder = std::filesystem::path(to).parent_path().string();
    if (!MakeDirectories(folder.c_str())) {
      *error = "cannot create the folder " + folder;
      return false;
    }
    const std::string from = data + Native(file.from);
    std::vector<uint8_t> bytes;
    if (!ReadWholeFile(from.c_str(), bytes)) {
      *error = "cannot read " + from;
      return false;
    }
    if (!WriteFileAtomic(to.c_str(), bytes.data(), bytes.size())) {
      *error = "cannot write " + to;
      return false;
    }
    if (installed) installed->push_back(file.to);
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
  const std::string root = WithSeparator(dir);
  const std::string config = root + "Config" + kPathSeparator;
  const std::string hostDir = root + "Host" + kPathSeparator;
  for (const std::string& folder : {config, root + "Plugins" + kPathSeparator, hostDir}) {
    if (!MakeDirectories(folder.c_str())) {
      *error = "cannot create the folder " + folder;
      return false;
    }
  }
  if (!InstallMissingFiles(root, nullptr, error)) return false;
  const std::string appIni = config + "tavinapp.ini";
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

bool UpdateConfig(std::string* rootOut, std::vector<std::string>* installed, std::string* error) {
  std::string config = ConfiguredDir();
  if (config.empty()) return true;
  config.pop_back();  // the separator
  size_t name = config.size();
  while (name > 0 && !IsPathSeparator(config[name - 1])) --name;
  if (name == 0 || config.compare(name, std::string::npos, "Config") != 0)
    return true;  // not a folder that setup made
  const std::string root = config.substr(0, name);
  if (rootOut) *rootOut = root;
  return InstallMissingFiles(root, installed, error);
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
