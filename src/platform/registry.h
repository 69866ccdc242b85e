// The registry. On Windows the real registry is read (unless
// RegistrySetStorePath named a file); elsewhere a profile file stands in for
// it: its section is the key path, as
// "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavin\\...", its keys the value names. The
// stand-in file is, in order: the path set by RegistrySetStorePath, else
// $XDG_CONFIG_HOME/Tavin/registry.ini, else $HOME/.config/Tavin/registry.ini.
#pragma once

#include <cstdint>
#include <string>

namespace fancy {

// Reads a string value. Returns false when the key or the value is absent,
// or the value does not fit in size - 1 characters (the registry read
// failed); the buffer then holds "".
bool RegistryReadString(const char* keyPath, const char* valueName, char* buffer, uint32_t size);

// Writes a string value (used by the host stand-in's set-up and by tests).
bool RegistryWriteString(const char* keyPath, const char* valueName, const char* value);

// Points the stand-in at another file; an empty path returns to the default.
void RegistrySetStorePath(const std::string& path);
std::string RegistryStorePath();

}  // namespace fancy
