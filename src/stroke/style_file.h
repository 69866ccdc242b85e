// brushka.ini: the saved styles, the name of the current style and the
// brush files of the six brush buttons. It is read and written key by key
// through the profile calls, with no cache of its own: every read goes to
// the file, and a missing file reads like an empty one.
//
//   [PresetList]  Current, NumStyles, Style1, Style2, ...
//   [Brushes]     Dir, Brush1 .. Brush6
//   [<style>]     BrushName, ColorBrush, ColorBackground, Writeable,
//                 BrushParms, ColorParms, SizeParms, AngleParms, TransParms,
//                 XDistVal, YDistVal
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/effect_record.h"

namespace fancy {

// The style file's path: the configuration folder without its last seven
// characters (the "Config" folder and its separator), then "Plugins", the
// separator and "brushka.ini", so that the file sits in the folder Plugins
// beside Config. No test is made that the seven characters are those. A
// configuration folder of fewer than seven characters (or none found) gives
// no style file at all: "" is returned, every read gives its default and
// every write fails. The path is formed once for each configuration folder.
const char* StyleFilePath();

// Loads the style named by Current into the record. Returns non-zero on
// success; an empty or missing Current fails, with the record as prepared
// (RGB black colours, Layering 345, every mode 1142, no brush, centre 0.5,
// Writeable 1, StyleDirty 0). Keys missing from the style read as their
// defaults; numbers that do not scan leave the record's fields as they were.
int32_t StyleLoad(StrokeRecord* style);

// Saves the record as the style StyleName and makes it Current. A style that
// is not writeable only becomes Current. Returns non-zero on success; the
// first failed write stops the save with StyleDirty still set.
int32_t StyleSave(StrokeRecord* style);

// Writes the name (at most 80 characters of it) to Current and loads that
// style into the record, as choosing it from the dialog's list does.
// Returns what the load returns; 0 when Current cannot be written.
int32_t StyleChoose(const char* name, StrokeRecord* style);

// Removes a style's whole section. False when the file cannot be written.
bool StyleRemove(const char* name);

// The list of the dialog's style box: the names of Style1..StyleN for N =
// NumStyles (keys without text are skipped), and the entry whose text is
// Current (-1 if none).
struct StyleList {
  std::vector<std::string> names;
  int32_t selected = -1;
};
void StyleListRead(StyleList* list);

// Writes the count to NumStyles and the names, in order, to Style1, Style2,
// ... Keys beyond the count are left in the file, bounded by NumStyles.
bool StyleListWrite(const StyleList& list);

// The brush directory: Dir of Brushes, resolved against the style file's
// folder ("" when it does not fit in 255 characters).
std::string BrushDirectory();

// The brush file of brush button n (1..6): Brush<n> in the brush directory
// when it is a bare file name, else as it stands. "" for an empty key, an n
// out of range, or a path that does not fit in size - 1 characters. Returns
// the length.
uint32_t BrushButtonPath(int32_t n, char* buffer, uint32_t size);

// ---- the forms of the keys' values ----------------------------------------

// Scans up to count integers separated by single commas, as "%d,%d,..."
// scans: blanks before a number are skipped, a sign is allowed, and the
// scan stops at the first piece that is not a number. Digits beyond the
// 32-bit range keep the low 32 bits. Returns the number of fields read.
int32_t ScanIntegers(const char* text, int32_t* values, int32_t count);

// A decimal number as the runtime's atof reads one: blanks, sign, digits,
// fraction and exponent; anything else ends it, and no number reads as 0.
double ReadDecimal(const char* text);

}  // namespace fancy
