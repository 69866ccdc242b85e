// PLGPARAM.INI: the saved settings ("presets") of the relief effects, a
// profile file in the host's directory. One section per effect, one key per
// preset, the preset's numbers as one comma-separated value. Every write is
// followed by a flush of the profile cache.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fancy {

constexpr const char kPresetSectionKnurl[] = "The Knurl";
constexpr const char kPresetSectionGlass[] = "Glass";
// The built-in presets are string resources "name=values" from these ids.
constexpr uint32_t kKnurlPresetFirst = 1420;
constexpr int32_t kKnurlPresetCount = 7;
constexpr uint32_t kGlassPresetFirst = 1450;
constexpr int32_t kGlassPresetCount = 8;

// Full path of PLGPARAM.INI, formed from the host's directory at first use
// and kept. ResetPresetFilePath forms it again at the next use (tests, a host
// that moved its configuration).
const char* PresetFilePath();
void ResetPresetFilePath();

// Reads the number of the next piece of a preset value: blanks at the start
// of the piece are skipped, an optional sign and decimal digits are read
// (none read as 0; values beyond 32 bits are held at the limit), and the
// cursor moves past the next ','. Returns false, with 0, when no piece is
// left; the cursor then becomes null.
bool ReadNextNumber(const char** cursor, int32_t* value);

// Reads count numbers; pieces that are not there read as 0. Returns how many
// pieces were there (at most count).
int32_t ParsePresetValues(const char* text, int32_t* values, int32_t count);

// The numbers as "%d, %d, ...".
std::string FormatPresetValues(const int32_t* values, int32_t count);

// True when the section has a key of that name (whatever its value).
bool PresetExists(const char* section, const char* name);

// Reads a preset's numbers; false when the key is absent (values untouched).
bool ReadPreset(const char* section, const char* name, int32_t* values, int32_t count);

// Writes a preset's numbers under name, then flushes. False when the file
// cannot be written.
bool WritePreset(const char* section, const char* name, const int32_t* values, int32_t count);
// The same under "Last Used", as a relief dialog does on OK.
bool WriteLastUsedPreset(const char* section, const int32_t* values, int32_t count);

// Writes the built-in presets of the string resources firstId ..
// firstId + count - 1 into the section, each only if its key is not there
// yet: a built-in preset that the user changed or deleted stays as the user
// left it. Resources with no text or an empty value are skipped. Ends with a
// flush.
void SeedPresets(const char* section, uint32_t firstId, int32_t count);

// The presets as a dialog lists them.
struct PresetList {
  std::vector<std::string> names;  // keys whose value is not "<deleted>"
  int32_t selected;                // "Last Used", else "Defaults", else 0; -1 when empty
};

// Lists the section's presets. The key names are read into a buffer of 255
// characters (a longer list is cut there) and each value to 15 characters.
// A section with no keys at all is told to the user ("Cannot access filter
// presets") and gives -128, which ends the dialog; otherwise 0.
int16_t LoadPresetList(const char* section, PresetList* list);

// True when name is, case-insensitively, the name of one of the built-in
// presets from firstId on (each name cut to 47 characters, the run of
// resources ending at the first id without text).
bool IsBuiltinPreset(const char* name, uint32_t firstId);

// Deletes a preset: a built-in one is kept as "<deleted>" so that seeding
// does not bring it back; any other key is removed. Flushes. False when the
// file cannot be written.
bool DeletePreset(const char* section, const char* name, uint32_t firstBuiltinId);

}  // namespace fancy
