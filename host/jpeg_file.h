// JPEG pictures through libjpeg: grey, RGB (and YCbCr), CMYK and YCCK. A
// CMYK file with the Adobe marker holds its inks inverted, as the programs
// that write such files do; both forms are read. Writes grey, RGB, and CMYK
// with the Adobe marker and inverted inks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"

namespace fancy {

bool LooksLikeJpeg(const uint8_t* data, size_t size);
// Warnings about damaged data (a truncated file, a bad Huffman code) count
// as failures: a picture that decodes only in part is refused.
bool DecodeJpeg(const uint8_t* data, size_t size, FilePicture* picture, std::string* error);
bool EncodeJpeg(const FilePicture& picture, int quality, std::vector<uint8_t>* out,
                std::string* error);

}  // namespace fancy
