#include "config/config.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <system_error>
#include <vector>

#include "config/color_settings.h"
#include "config/strings.h"
#include "platform/file.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "ui/message_box.h"

namespace fancy {

namespace {

constexpr uint32_t kStringFileNotFound = 20775;
constexpr uint32_t kStringRegistryNotFound = 20776;
constexpr const char* kBoxCaption = "Tavin";
constexpr uint32_t kBoxFlags = kMbOk | kMbIconExclamation | kMbTaskModal;  // 8240
constexpr const char* kRegistryValue = "ConfigDir";

// Values longer than this are not paths; they read as too long.
constexpr uint32_t kRawValueSize = 1024;

enum DirectoryKey { kDataDir, kColorDir, kCustomDir, kProgramsDir, kHostDir, kDirectoryKeys };
const char* const kDirectoryKeyNames[kDirectoryKeys] = {"DataDir", "ColorDir", "CustomDir",
                                                        "ProgramsDir", "PixelboxDir"};

struct DirectoryCache {
  char path[kMaxPath];
  int32_t length;  // -1 until first use
};

// Everything the subsystem knows, forgotten by ConfigReset. One user-interface
// thread calls in, so nothing is locked.
struct ConfigState {
  std::string product = "Fancy";
  std::string version = "8.00";
  bool found = false;
  std::string dir;  // the folder, with its trailing separator
  std::string appIni, prnIni, fntIni, colorIni;
  DirectoryCache directories[kDirectoryKeys];
  bool bigPaletteRead = false;
  int bigPalette = 0;
};

ConfigState& State() {
  static ConfigState state = [] {
    ConfigState s;
    for (DirectoryCache& cache : s.directories) cache.length = -1;
    return s;
  }();
  return state;
}

// Puts the arguments in place of the template's "%s" marks, in order; "%%"
// is a percent sign. Templates come from the string table, so the marks are
// not trusted to match a printf argument list.
std::string FormatTemplate(const char* pattern, std::initializer_list<const char*> args) {
  std::string out;
  auto next = args.begin();
  for (const char* p = pattern ? pattern : ""; *p; ++p) {
    if (p[0] == '%' && p[1] == 's') {
      if (next != args.end()) {
        const char* arg = *next++;
        out += arg ? arg : "";
      }
      ++p;
    } else if (p[0] == '%' && p[1] == '%') {
      out += '%';
      ++p;
    } else {
      out += *p;
    }
  }
  return out;
}

// The folder's file of this name. Files copied from Windows may differ in
// case from the names the programs use, so on a case-sensitive system a
// differently-cased file is accepted when the exact name is absent.
std::string FileInFolder(const std::string& dir, const char* name) {
  std::string exact = dir + name;
  if (FileExists(exact.c_str())) return exact;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    std::string found = it->path().filename().string();
    if (found.size() != std::strlen(name)) continue;
    bool same = true;
    for (size_t i = 0; i < found.size() && same; ++i)
      same = std::tolower(static_cast<unsigned char>(found[i])) ==
             std::tolower(static_cast<unsigned char>(name[i]));
    if (same && FileExists((dir + found).c_str())) return dir + found;
  }
  return exact;
}

// The registry key that names the folder, as a user would look for it.
std::string RegistryKeyPath(const ConfigState& state) {
  return "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\" + state.product + "\\" + state.version;
}

// Length of the root of path: the leading separators, after a drive on
// Windows. A ".." never climbs above it.
size_t RootLength(const std::string& path) {
  size_t i = 0;
#ifdef _WIN32
  if (path.size() >= 2 && path[1] == ':') i = 2;
#endif
  while (i < path.size() && IsPathSeparator(path[i])) ++i;
  return i;
}

// Takes off "." parts and each ".." with the part before it.
std::string RemoveDotParts(const std::string& path) {
  size_t root = RootLength(path);
  std::vector<std::string> parts;
  size_t i = root;
  while (i <= path.size()) {
    size_t j = i;
    while (j < path.size() && !IsPathSeparator(path[j])) ++j;
    std::string part = path.substr(i, j - i);
    if (part == "..") {
      if (!parts.empty() && parts.back() != "..") parts.pop_back();
      else if (root == 0) parts.push_back(part);  // a relative path keeps its leading ".."
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    i = j + 1;
  }
  std::string out = path.substr(0, root);
  for (size_t k = 0; k < parts.size(); ++k) {
    if (k) out += kPathSeparator;
    out += parts[k];
  }
  return out;
}

// A path value of tavinapp.ini as it is used: an absolute one as it stands, a
// relative one under the folder of tavinapp.ini with its dot parts taken off.
// An empty value is the folder itself.
std::string ResolvePath(const ConfigState& state, const std::string& value) {
  if (IsAbsolutePath(value.c_str())) return value;
  return RemoveDotParts(state.dir + value);
}

// Reads a key with a default; false when its value is too long to be a path.
bool ReadValue(const ConfigState& state, const char* section, const char* key,
               const std::string& fallback, std::string* value) {
  char raw[kRawValueSize];
  uint32_t n = ProfileGetString(section, key, fallback.c_str(), raw, sizeof raw,
                                state.appIni.c_str());
  value->assign(raw, n);
  return n < sizeof raw - 1;
}

uint32_t CopyOut(const char* text, size_t length, char* buffer, uint32_t size) {
  if (!buffer || size == 0) return 0;
  size_t n = length < size - 1u ? length : size - 1u;
  std::memcpy(buffer, text, n);
  buffer[n] = '\0';
  return static_cast<uint32_t>(n);
}

uint32_t CopyOut(const std::string& text, char* buffer, uint32_t size) {
  return CopyOut(text.data(), text.size(), buffer, size);
}

uint32_t GetDirectory(DirectoryKey which, char* buffer, uint32_t size) {
  ConfigState& state = State();
  DirectoryCache& cache = state.directories[which];
  if (cache.length < 0) {
    std::string resolved;
    if (ConfigFind(1)) {
      std::string value;
      if (ReadValue(state, "Config", kDirectoryKeyNames[which], state.dir, &value))
        resolved = ResolvePath(state, value);
      if (!resolved.empty() && !IsPathSeparator(resolved.back())) resolved += kPathSeparator;
      if (resolved.size() > kMaxPath - 1) resolved.clear();  // does not fit the path buffer
    }
    std::memcpy(cache.path, resolved.c_str(), resolved.size() + 1);
    cache.length = static_cast<int32_t>(resolved.size());
  }
  return CopyOut(cache.path, static_cast<size_t>(cache.length), buffer, size);
}

bool SamePathPrefix(const std::string& path, const std::string& prefix) {
  if (path.size() < prefix.size()) return false;
#ifdef _WIN32
  for (size_t i = 0; i < prefix.size(); ++i) {
    char a = path[i], b = prefix[i];
    if (IsPathSeparator(a) && IsPathSeparator(b)) continue;
    if (std::tolower(static_cast<unsigned char>(a)) != std::tolower(static_cast<unsigned char>(b)))
      return false;
  }
  return true;
#else
  return path.compare(0, prefix.size(), prefix) == 0;
#endif
}

}  // namespace

void ConfigSetProduct(const char* product, const char* version) {
  ConfigState& state = State();
  state.product = product ? product : "";
  state.version = version ? version : "";
  ConfigReset();
}

const char* ConfigProduct() { return State().product.c_str(); }
const char* ConfigVersion() { return State().version.c_str(); }

bool ConfigFind(int showError) {
  ConfigState& state = State();
  if (state.found) return true;
  if (state.product.empty()) return false;  // no lookup in this form

  std::string key = RegistryKeyPath(state);
  char dir[kMaxPath];
  if (!RegistryReadString(key.c_str(), kRegistryValue, dir, sizeof dir) || !dir[0]) {
    if (showError) {
      std::string text = FormatTemplate(FindString(kStringRegistryNotFound),
                                        {kRegistryValue, key.c_str()});
      ShowMessageBox(nullptr, text.c_str(), kBoxCaption, kBoxFlags);
    }
    return false;
  }
  std::string folder = dir;
  if (!IsPathSeparator(folder.back())) folder += kPathSeparator;

  std::string appIni = FileInFolder(folder, "tavinapp.ini");
  if (!FileExists(appIni.c_str())) {
    if (showError) {
      std::string text = FormatTemplate(FindString(kStringFileNotFound),
                                        {appIni.c_str(), key.c_str(), kRegistryValue});
      ShowMessageBox(nullptr, text.c_str(), kBoxCaption, kBoxFlags);
    }
    return false;
  }

  state.found = true;
  state.dir = folder;
  state.appIni = appIni;
  state.prnIni = FileInFolder(folder, "tavinprn.ini");
  state.fntIni = FileInFolder(folder, "tavinfnt.ini");
  state.colorIni = FileInFolder(folder, "Color.ini");
  return true;
}

void ConfigReset() {
  ConfigState& state = State();
  state.found = false;
  state.dir.clear();
  state.appIni.clear();
  state.prnIni.clear();
  state.fntIni.clear();
  state.colorIni.clear();
  for (DirectoryCache& cache : state.directories) {
    cache.path[0] = '\0';
    cache.length = -1;
  }
  state.bigPaletteRead = false;
  state.bigPalette = 0;
  ColorSettingsReset();
}

uint32_t ConfigDirOf(char* buffer, uint32_t size) {
  ConfigFind(1);
  return CopyOut(State().dir, buffer, size);
}

// The file locations are asked for by readers that report their own failure,
// so they look for the folder without a box.
const char* ConfigAppIniPath() {
  ConfigFind(0);
  return State().appIni.c_str();
}
const char* ConfigPrnIniPath() {
  ConfigFind(0);
  return State().prnIni.c_str();
}
const char* ConfigFntIniPath() {
  ConfigFind(0);
  return State().fntIni.c_str();
}
const char* ConfigColorIniPath() {
  ConfigFind(0);
  return State().colorIni.c_str();
}

uint32_t GetDataDir(char* buffer, uint32_t size) { return GetDirectory(kDataDir, buffer, size); }
uint32_t GetColorDir(char* buffer, uint32_t size) { return GetDirectory(kColorDir, buffer, size); }
uint32_t GetCustomDir(char* buffer, uint32_t size) {
  return GetDirectory(kCustomDir, buffer, size);
}
uint32_t GetProgramsDir(char* buffer, uint32_t size) {
  return GetDirectory(kProgramsDir, buffer, size);
}
uint32_t GetHostDir(char* buffer, uint32_t size) { return GetDirectory(kHostDir, buffer, size); }

int ConfigBigPalette() {
  ConfigState& state = State();
  if (!state.bigPaletteRead) {
    ConfigFind(1);
    state.bigPalette =
        static_cast<int32_t>(ProfileGetInt("Config", "BigPalette", 0, state.appIni.c_str()));
    state.bigPaletteRead = true;
  }
  return state.bigPalette;
}

int Config3DLook() {
  ConfigFind(1);
  return static_cast<int32_t>(ProfileGetInt("Debug", "3DLook", 1, State().appIni.c_str()));
}

uint32_t GetUserPalette(char* buffer, uint32_t size) {
  ConfigState& state = State();
  std::string resolved;
  if (ConfigFind(1)) {
    char custom[kMaxPath];
    GetCustomDir(custom, sizeof custom);
    std::string value;
    if (ReadValue(state, "Configuration", "UserPalette", std::string(custom) + "sketchry.cpl",
                  &value))
      resolved = ResolvePath(state, value);
    if (resolved.size() > kMaxPath - 1) resolved.clear();
  }
  return CopyOut(resolved, buffer, size);
}

bool SetUserPalette(const char* path) {
  ConfigState& state = State();
  if (!path || !ConfigFind(1)) return false;
  // Under the folder, the path is kept relative, so that the folder can move.
  std::string value = path;
  if (SamePathPrefix(value, state.dir)) value.erase(0, state.dir.size());
  return ProfileWriteString("Configuration", "UserPalette", value.c_str(), state.appIni.c_str());
}

uint32_t GetPaintArea(char* buffer, uint32_t size) {
  ConfigFind(1);
  return ProfileGetString("Configuration", "PaintArea", "pntarea.bmp", buffer, size,
                          State().appIni.c_str());
}

bool SetPaintArea(const char* name) {
  if (!name || !ConfigFind(1)) return false;
  return ProfileWriteString("Configuration", "PaintArea", name, State().appIni.c_str());
}

uint32_t GetRollupPaintArea(char* buffer, uint32_t size) {
  ConfigFind(1);
  return ProfileGetString("Configuration", "RollupPaintArea", "pnt_roll.bmp", buffer, size,
                          State().appIni.c_str());
}

uint32_t ProfileGetPath(const char* section, const char* key, const char* defaultValue,
                        char* buffer, uint32_t size, const char* iniPath) {
  if (!buffer || size == 0) return 0;
  buffer[0] = '\0';
  if (!iniPath || !iniPath[0]) return 0;
  char raw[kRawValueSize];
  uint32_t n = ProfileGetString(section, key, defaultValue ? defaultValue : "", raw, sizeof raw,
                                iniPath);
  if (n >= sizeof raw - 1) return 0;  // too long to be a path
  std::string value(raw, n);
  if (!IsAbsolutePath(value.c_str())) {
    std::string folder = iniPath;
    size_t cut = folder.size();
    while (cut > 0 && !IsPathSeparator(folder[cut - 1])) --cut;
    folder.resize(cut);
    value = RemoveDotParts(folder + value);
  }
  if (value.size() > size - 1u) return 0;
  return CopyOut(value, buffer, size);
}

}  // namespace fancy
