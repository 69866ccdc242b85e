// The shared configuration folder: found through the registry value
// ConfigDir, it holds tavinapp.ini (directories and general settings),
// tavinprn.ini and tavinfnt.ini (located, not read) and Color.ini.
#pragma once

#include <cstdint>

namespace fancy {

// Product and version under which the registry key
// "SOFTWARE\Tavin\<product>\<version>" is read. The module names itself
// "Fancy" "8.00"; an empty product means no registry lookup.
void ConfigSetProduct(const char* product, const char* version);
const char* ConfigProduct();
const char* ConfigVersion();

// Finds the folder once; later calls return at once. With showError, a
// folder that is not found is told in a message box.
bool ConfigFind(int showError);
// Forgets the folder and every cached directory and setting (for tests and
// for the host stand-in after it sets up a folder).
void ConfigReset();

// The folder with its trailing separator, cut to size - 1; returns the length.
uint32_t ConfigDirOf(char* buffer, uint32_t size);
// Full paths of the three files ("" when the folder is not found).
const char* ConfigAppIniPath();
const char* ConfigPrnIniPath();
const char* ConfigFntIniPath();
const char* ConfigColorIniPath();

// Directory keys of section "Config", each with the folder as default, a
// relative value resolved against the folder of tavinapp.ini with ".." parts
// taken off, a trailing separator added, and a resolved value longer than
// 260 reading as empty. Each copies at most size - 1 characters and returns
// the length copied.
uint32_t GetDataDir(char* buffer, uint32_t size);
uint32_t GetColorDir(char* buffer, uint32_t size);
uint32_t GetCustomDir(char* buffer, uint32_t size);
uint32_t GetProgramsDir(char* buffer, uint32_t size);
uint32_t GetHostDir(char* buffer, uint32_t size);  // PixelboxDir

int ConfigBigPalette();  // "Config" BigPalette, read once
int Config3DLook();      // "Debug" 3DLook

// "Configuration" UserPalette: resolved like a directory key (default
// CustomDir + "sketchry.cpl"); written back relative to the folder of
// tavinapp.ini when it lies under it.
uint32_t GetUserPalette(char* buffer, uint32_t size);
bool SetUserPalette(const char* path);
uint32_t GetPaintArea(char* buffer, uint32_t size);
bool SetPaintArea(const char* name);
uint32_t GetRollupPaintArea(char* buffer, uint32_t size);

// The path-expanding profile reader that other profile files share: reads key
// of section from the profile file iniPath (defaultValue when missing) and
// resolves a relative value against the folder of iniPath with its dot parts
// taken off; an empty value is that folder. A result that does not fit in
// size - 1 characters reads as empty. Returns the length copied.
uint32_t ProfileGetPath(const char* section, const char* key, const char* defaultValue,
                        char* buffer, uint32_t size, const char* iniPath);

}  // namespace fancy
