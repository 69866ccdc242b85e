#include "png_file.h"

#include <png.h>

#include <csetjmp>
#include <cstring>

namespace fancy {

namespace {

// libpng reports errors by longjmp back to the setjmp of the call. The
// functions holding the setjmp keep only plain pointers and numbers, so
// that no destructor is skipped; the buffers belong to the callers.
struct PngSource {
  const uint8_t* data;
  size_t size;
  size_t offset;
};

struct PngErrorSink {
  char message[256];
};

void OnPngError(png_structp png, png_const_charp message) {
  auto* sink = static_cast<PngErrorSink*>(png_get_error_ptr(png));
  if (sink) {
    std::strncpy(sink->message, message ? message : "unknown error", sizeof sink->message - 1);
    sink->message[sizeof sink->message - 1] = '\0';
  }
  png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp) {}

void ReadFromMemory(png_structp png, png_bytep out, png_size_t length) {
  auto* source = static_cast<PngSource*>(png_get_io_ptr(png));
  if (length > source->size - source->offset) png_error(png, "the file is truncated");
  std::memcpy(out, source->data + source->offset, length);
  source->offset += length;
}

void WriteToMemory(png_structp png, png_bytep in, png_size_t length) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), in, in + length);
}

void FlushMemory(png_structp) {}

struct PngHeader {
  uint32_t width, height;
  int grey;
};

// Reads the header and sets up the transforms; 0 on success.
int ReadHeader(png_structp png, png_infop info, PngHeader* header) {
  if (setjmp(png_jmpbuf(png))) return 1;
  png_set_user_limits(png, kMaxPictureSide, kMaxPictureSide);
  png_read_info(png, info);
  header->width = png_get_image_width(png, info);
  header->height = png_get_image_height(png, info);
  int colourType = png_get_color_type(png, info);
  int depth = png_get_bit_depth(png, info);
  if (colourType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
  if (colourType == PNG_COLOR_TYPE_GRAY && depth < 8) png_set_expand_gray_1_2_4_to_8(png);
  if (depth == 16) png_set_strip_16(png);
  png_set_strip_alpha(png);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  header->grey = (png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR) == 0;
  int channels = png_get_channels(png, info);
  if (channels != (header->grey ? 1 : 3)) png_error(png, "unexpected channel layout");
  return 0;
}

int ReadRows(png_structp png, png_infop info, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return 1;
  png_read_image(png, rows);
  png_read_end(png, info);
  return 0;
}

int WriteAll(png_structp png, png_infop info, uint32_t width, uint32_t height, int grey,
             png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return 1;
  png_set_IHDR(png, info, width, height, 8, grey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_write_image(png, rows);
  png_write_end(png, info);
  return 0;
}

}  // namespace

bool LooksLikePng(const uint8_t* data, size_t size) {
  return size >= 8 && png_sig_cmp(data, 0, 8) == 0;
}

bool DecodePng(const uint8_t* data, size_t size, FilePicture* picture, std::string* error) {
  if (!LooksLikePng(data, size)) {
    *error = "not a PNG file";
    return false;
  }
  PngErrorSink sink{};
  PngSource source{data, size, 0};
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &sink, OnPngError, OnPngWarning);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_read_struct(&png, nullptr, nullptr);
    *error = "out of memory";
    return false;
  }
  png_set_read_fn(png, &source, ReadFromMemory);

  bool ok = false;
  PngHeader header{};
  if (ReadHeader(png, info, &header) == 0) {
    std::string sizeError;
    if (!CheckPictureSize(header.width, header.height, &sizeError)) {
      std::strncpy(sink.message, sizeError.c_str(), sizeof sink.message - 1);
    } else {
      picture->width = int32_t(header.width);
      picture->height = int32_t(header.height);
      picture->mode = header.grey ? PixelMode::kGrey : PixelMode::kRGB;
      size_t rowBytes = size_t(header.width) * size_t(PlanesOf(picture->mode));
      picture->pixels.assign(rowBytes * header.height, 0);
      std::vector<png_bytep> rows(header.height);
      for (uint32_t y = 0; y < header.height; ++y) rows[y] = picture->pixels.data() + y * rowBytes;
      ok = ReadRows(png, info, rows.data()) == 0;
    }
  }
  png_destroy_read_struct(&png, &info, nullptr);
  if (!ok) {
    *error = std::string("the PNG file is damaged or truncated: ") + sink.message;
    picture->pixels.clear();
  }
  return ok;
}

bool EncodePng(const FilePicture& picture, std::vector<uint8_t>* out, std::string* error) {
  if (picture.mode == PixelMode::kCMYK) {
    *error = "PNG files cannot hold CMYK";
    return false;
  }
  PngErrorSink sink{};
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink, OnPngError, OnPngWarning);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    *error = "out of memory";
    return false;
  }
  out->clear();
  png_set_write_fn(png, out, WriteToMemory, FlushMemory);
  const int grey = picture.mode == PixelMode::kGrey;
  size_t rowBytes = size_t(picture.width) * size_t(PlanesOf(picture.mode));
  std::vector<png_bytep> rows(size_t(picture.height));
  for (int32_t y = 0; y < picture.height; ++y)
    rows[size_t(y)] = const_cast<png_bytep>(picture.pixels.data() + size_t(y) * rowBytes);
  bool ok = WriteAll(png, info, uint32_t(picture.width), uint32_t(picture.height), grey,
                     rows.data()) == 0;
  png_destroy_write_struct(&png, &info);
  if (!ok) *error = std::string("cannot encode PNG: ") + sink.message;
  return ok;
}

}  // namespace fancy
