// BMP pictures: read 1, 4, 8, 24 and 32 bits a pixel, uncompressed, with
// either the 12-byte core header or the 40-byte (or longer) info header,
// bottom-up or top-down; write 8-bit grey (with a grey palette) and 24-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"

namespace fancy {

bool LooksLikeBmp(const uint8_t* data, size_t size);

// Decodes a whole file held in memory. Every field is checked against the
// bytes present; a bad file fills error and returns false. A palette whose
// entries are all grey gives a grey picture, anything else RGB.
bool DecodeBmp(const uint8_t* data, size_t size, FilePicture* picture, std::string* error);

// Grey pictures are written with 8 bits and a grey palette, RGB with 24
// bits; a CMYK picture must be converted first (returns an empty vector).
std::vector<uint8_t> EncodeBmp(const FilePicture& picture);

}  // namespace fancy
