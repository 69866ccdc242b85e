// Source pictures and tile files: the BMP reader behind "New Image...", the
// BMP writer behind "Save Tile...", their messages, and the crop of a loaded
// picture that is larger than the filtered image.
//
// Only uncompressed BMP files of 1, 4, 8 and 24 bits are read. Every file is
// treated as hostile: sizes, counts and offsets are checked before use, and a
// bad file gives its code, never a read past what the file holds.
#pragma once

#include <cstdint>
#include <cstdio>

#include "imaging/bmp_header.h"
#include "imaging/image.h"

namespace fancy {

// Results of the file functions; ShowFileError has a message for each.
enum : int16_t {
  kSourceFileOk = 0,
  kSourceFileNotBmp = 2,      // not a usable BMP
  kSourceFileReadError = 3,
  kSourceFileOpenError = 4,
  kSourceFileNoMemory = 5,
  kSourceFileNotBmpToo = 6,   // shown as code 2
};

// String rows of the source side.
enum : uint32_t {
  kStrOriginalImage = 1231,
  kStrNewImage = 1232,
  kStrSelectSourceArea = 1233,
  kStrSaveTileTitle = 1243,
  kStrLoadSourceTitle = 1244,
  kStrDefaultTileName = 1245,
  kStrOpenError = 1246,
  kStrNotValidSource = 1247,
  kStrReadError = 1248,
  kStrLowMemory = 1249,
  kStrTessarisWarning = 1250,
  kStrBmpFilter = 1251,
  kStrTilesFolder = 1252,
  kStrTessaris = 1253,
  kStrTessarisDashWarning = 1254,
  kStrReloadQuestion = 1256,
  kStrFeatherOutside = 1258,
};

// Palette classes of ReadBmpPalette.
enum : int32_t {
  kBmpPaletteShort = 0,     // the palette could not be read
  kBmpPaletteOrdinary = 1,
  kBmpPaletteDarkFirst = 2, // a 1-bit file whose first entry is not white
};

// One palette entry as the file holds it: blue, green, red.
struct BmpColour {
  uint8_t blue;
  uint8_t green;
  uint8_t red;
};

// Reads both headers from the start of the file: 0, or 3 when the file is
// too short for them.
int16_t ReadBmpHeader(std::FILE* file, BmpHeader* header);

// Reads the palette after the headers into palette (256 entries, those the
// file lacks left black) and sets colours. A 1-bit file has only its first
// entry read, and the file position is put back. Returns a kBmpPalette class.
int32_t ReadBmpPalette(const BmpHeader& header, std::FILE* file, BmpColour palette[256],
                       int32_t* colours);

// Loads an uncompressed BMP as a picture of the host's mode (gray 5, RGB 1,
// CMYK 3; other modes keep RGB). The picture's rows are the file's, bottom
// row first. *outImage is set only on success; the caller owns it.
int16_t LoadSourceBmp(const char* path, Image** outImage, int16_t hostMode);

// The ImageType a picture is converted to for a host mode.
int32_t SourceTypeForMode(int16_t hostMode);

// Writes an image of type 1, 3, 5 or 99 as a BMP of 24, 32 or 8 bits (8 bits
// with a gray palette), rows as the image holds them. 0, or 3 on failure.
int16_t SaveImageBmp(const Image* image, const char* path);

// Tells the user about a failed file: the message of the code formatted with
// the path, titled "Tessaris Warning", with a warning icon. Code 0 shows
// nothing.
void ShowFileError(void* dialog, const char* path, int16_t code);

// The part of a loaded picture that is used, right and bottom one past it.
struct SourceCrop {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};

// The forced crop: where the loaded picture is wider (higher) than the
// filtered image, the centred part of the filtered image's size; else the
// whole side. True when neither side needed cutting.
bool ComputeSourceCrop(int32_t loadedWidth, int32_t loadedHeight, int32_t filteredWidth,
                       int32_t filteredHeight, SourceCrop* crop);

}  // namespace fancy
