// PNG pictures through libpng. Every bit depth and colour type is read:
// palettes are expanded, 16-bit samples cut to 8, alpha dropped. Grey files
// give grey pictures, the rest RGB. Writes 8-bit grey or RGB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"

namespace fancy {

bool LooksLikePng(const uint8_t* data, size_t size);
bool DecodePng(const uint8_t* data, size_t size, FilePicture* picture, std::string* error);
// Grey or RGB; a CMYK picture must be converted first. False with error on failure.
bool EncodePng(const FilePicture& picture, std::vector<uint8_t>* out, std::string* error);

}  // namespace fancy
