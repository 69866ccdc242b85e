#include "image_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "bmp_file.h"
#include "jpeg_file.h"
#include "png_file.h"

namespace fancy {

namespace {

constexpr int kJpegQuality = 92;

std::string LowerExtension(const std::string& path) {
  size_t slash = path.find_last_of("/\\");
  size_t dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string ext = path.substr(dot);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  return ext;
}

}  // namespace

FileFormat FormatFromName(const std::string& path) {
  std::string ext = LowerExtension(path);
  if (ext == ".bmp") return FileFormat::kBmp;
  if (ext == ".png") return FileFormat::kPng;
  if (ext == ".jpg" || ext == ".jpeg") return FileFormat::kJpeg;
  return FileFormat::kUnknown;
}

bool DecodePicture(const uint8_t* data, size_t size, FilePicture* picture, std::string* error) {
  if (LooksLikeBmp(data, size)) return DecodeBmp(data, size, picture, error);
  if (LooksLikePng(data, size)) return DecodePng(data, size, picture, error);
  if (LooksLikeJpeg(data, size)) return DecodeJpeg(data, size, picture, error);
  *error = size == 0 ? "the file is empty" : "not a BMP, PNG or JPEG file";
  return false;
}

bool ReadPictureFile(const std::string& path, FilePicture* picture, std::string* error) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) {
    *error = std::strerror(errno);
    return false;
  }
  std::vector<uint8_t> bytes;
  uint8_t chunk[65536];
  size_t got;
  bool tooLarge = false;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
    if (bytes.size() + got > kMaxPictureFileBytes) {
      tooLarge = true;
      break;
    }
    bytes.insert(bytes.end(), chunk, chunk + got);
  }
  bool readError = std::ferror(file) != 0;
  std::fclose(file);
  if (readError) {
    *error = "read error";
    return false;
  }
  if (tooLarge) {
    *error = "the file is larger than fancyhost reads";
    return false;
  }
  return DecodePicture(bytes.data(), bytes.size(), picture, error);
}

bool EncodePicture(const HostImage& image, FileFormat format, std::vector<uint8_t>* out,
                   std::string* error) {
  PixelMode mode = image.mode;
  if (mode == PixelMode::kCMYK && format != FileFormat::kJpeg) mode = PixelMode::kRGB;
  FilePicture picture = ToFilePicture(image, mode);
  switch (format) {
    case FileFormat::kBmp:
      *out = EncodeBmp(picture);
      if (out->empty()) *error = "the picture is too large for a BMP file";
      return !out->empty();
    case FileFormat::kPng: return EncodePng(picture, out, error);
    case FileFormat::kJpeg: return EncodeJpeg(picture, kJpegQuality, out, error);
    case FileFormat::kUnknown: break;
  }
  *error = "unknown output format";
  return false;
}

}  // namespace fancy
