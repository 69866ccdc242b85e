// Picture files: the format is told by the file's first bytes when reading
// and by the name's extension when writing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "picture.h"

namespace fancy {

enum class FileFormat { kUnknown, kBmp, kPng, kJpeg };

// ".bmp", ".png", ".jpg"/".jpeg", in any case.
FileFormat FormatFromName(const std::string& path);

// Largest file fancyhost reads.
constexpr size_t kMaxPictureFileBytes = size_t(1) << 30;

bool DecodePicture(const uint8_t* data, size_t size, FilePicture* picture, std::string* error);
bool ReadPictureFile(const std::string& path, FilePicture* picture, std::string* error);

// Encodes the host image for a format. BMP and PNG hold grey and RGB, so a
// CMYK image goes out as RGB there; JPEG keeps every mode.
bool EncodePicture(const HostImage& image, FileFormat format, std::vector<uint8_t>* out,
                   std::string* error);

}  // namespace fancy
