#include "platform/registry.h"

#include <cstdlib>
#include <cstring>

#include "platform/file.h"
#include "platform/path.h"
#include "platform/profile.h"
#include "platform/profile_text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace fancy {

namespace {

std::string gStorePath;  // set by RegistrySetStorePath; empty: the default

void ClearBuffer(char* buffer, uint32_t size) {
  if (buffer && size > 0) buffer[0] = '\0';
}

}  // namespace

void RegistrySetStorePath(const std::string& path) { gStorePath = path; }

std::string RegistryStorePath() {
  if (!gStorePath.empty()) return gStorePath;
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config && config[0]) return JoinPath(JoinPath(config, "Tavin"), "registry.ini");
  const char* home = std::getenv("HOME");
  if (home && home[0])
    return JoinPath(JoinPath(JoinPath(home, ".config"), "Tavin"), "registry.ini");
  return std::string();
}

namespace {

// The stand-in file: section = key path, key = value name.
bool StoreReadString(const char* keyPath, const char* valueName, char* buffer, uint32_t size) {
  ClearBuffer(buffer, size);
  if (!keyPath || !valueName || !buffer || size == 0) return false;
  std::string store = RegistryStorePath();
  std::string value;
  if (store.empty() || !ProfileLookup(keyPath, valueName, store.c_str(), &value)) return false;
  // The registry refuses a read into a buffer too small for the value.
  if (value.size() + 1 > size) return false;
  std::memcpy(buffer, value.c_str(), value.size() + 1);
  return true;
}

bool StoreWriteString(const char* keyPath, const char* valueName, const char* value) {
  if (!keyPath || !valueName || !value) return false;
  std::string store = RegistryStorePath();
  if (store.empty()) return false;
  size_t cut = store.size();
  while (cut > 0 && !IsPathSeparator(store[cut - 1])) --cut;
  std::string dir = store.substr(0, cut);
  if (!dir.empty() && !MakeDirectories(dir.c_str())) return false;
  return ProfileWriteString(keyPath, valueName, value, store.c_str());
}

}  // namespace

#ifdef _WIN32

namespace {

// Splits "HKEY_LOCAL_MACHINE\\SOFTWARE\\..." into its root and the rest.
bool OpenKeyPath(const char* keyPath, REGSAM access, bool create, HKEY* key) {
  static const struct {
    const char* name;
    HKEY root;
  } kRoots[] = {
      {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
      {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
      {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
      {"HKEY_USERS", HKEY_USERS},
  };
  for (const auto& root : kRoots) {
    size_t n = std::strlen(root.name);
    if (_strnicmp(keyPath, root.name, n) != 0 || (keyPath[n] != '\\' && keyPath[n] != '\0'))
      continue;
    const char* sub = keyPath[n] ? keyPath + n + 1 : "";
    if (create)
      return RegCreateKeyExA(root.root, sub, 0, nullptr, 0, access, nullptr, key, nullptr) ==
             ERROR_SUCCESS;
    return RegOpenKeyExA(root.root, sub, 0, access, key) == ERROR_SUCCESS;
  }
  return false;
}

}  // namespace

// A store path set for tests is used here too; otherwise the real registry.
bool RegistryReadString(const char* keyPath, const char* valueName, char* buffer, uint32_t size) {
  if (!gStorePath.empty()) return StoreReadString(keyPath, valueName, buffer, size);
  ClearBuffer(buffer, size);
  if (!keyPath || !valueName || !buffer || size == 0) return false;
  HKEY key;
  if (!OpenKeyPath(keyPath, KEY_READ, false, &key)) return false;
  DWORD type = 0;
  DWORD bytes = size;
  LONG status = RegQueryValueExA(key, valueName, nullptr, &type,
                                 reinterpret_cast<BYTE*>(buffer), &bytes);
  RegCloseKey(key);
  bool ok = status == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ);
  if (!ok) {
    buffer[0] = '\0';
    return false;
  }
  // A stored string need not carry its terminating zero.
  if (bytes >= size) bytes = size - 1;
  buffer[bytes] = '\0';
  return true;
}

bool RegistryWriteString(const char* keyPath, const char* valueName, const char* value) {
  if (!gStorePath.empty()) return StoreWriteString(keyPath, valueName, value);
  if (!keyPath || !valueName || !value) return false;
  HKEY key;
  if (!OpenKeyPath(keyPath, KEY_WRITE, true, &key)) return false;
  LONG status = RegSetValueExA(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                               static_cast<DWORD>(std::strlen(value) + 1));
  RegCloseKey(key);
  return status == ERROR_SUCCESS;
}

#else

bool RegistryReadString(const char* keyPath, const char* valueName, char* buffer, uint32_t size) {
  return StoreReadString(keyPath, valueName, buffer, size);
}

bool RegistryWriteString(const char* keyPath, const char* valueName, const char* value) {
  return StoreWriteString(keyPath, valueName, value);
}

#endif

}  // namespace fancy
