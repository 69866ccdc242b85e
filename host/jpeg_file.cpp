#include "jpeg_file.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

namespace fancy {

namespace {

// libjpeg reports fatal errors by longjmp back to the setjmp of the call;
// those functions hold only plain pointers and numbers, no destructors.
struct JpegErrors {
  jpeg_error_mgr manager;
  jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
};

void OnJpegError(j_common_ptr cinfo) {
  auto* errors = reinterpret_cast<JpegErrors*>(cinfo->err);
  (*cinfo->err->format_message)(cinfo, errors->message);
  longjmp(errors->jump, 1);
}

// Warnings (level -1) are counted and their first text kept; trace
// messages are dropped.
void OnJpegMessage(j_common_ptr cinfo, int level) {
  if (level >= 0) return;
  auto* errors = reinterpret_cast<JpegErrors*>(cinfo->err);
  if (cinfo->err->num_warnings++ == 0) (*cinfo->err->format_message)(cinfo, errors->message);
}

void SetUpErrors(JpegErrors* errors) {
  jpeg_std_error(&errors->manager);
  errors->manager.error_exit = OnJpegError;
  errors->manager.emit_message = OnJpegMessage;
  errors->message[0] = '\0';
}

struct JpegHeader {
  uint32_t width, height;
  int components;  // 1, 3 or 4
  int adobe;
};

int ReadHeader(jpeg_decompress_struct* cinfo, JpegErrors* errors, const uint8_t* data,
               size_t size, JpegHeader* header) {
  if (setjmp(errors->jump)) return 1;
  jpeg_mem_src(cinfo, data, (unsigned long)size);
  jpeg_read_header(cinfo, TRUE);
  switch (cinfo->jpeg_color_space) {
    case JCS_GRAYSCALE: cinfo->out_color_space = JCS_GRAYSCALE; break;
    case JCS_CMYK:
    case JCS_YCCK: cinfo->out_color_space = JCS_CMYK; break;
    default: cinfo->out_color_space = JCS_RGB; break;
  }
  header->width = cinfo->image_width;
  header->height = cinfo->image_height;
  header->adobe = cinfo->saw_Adobe_marker;
  return 0;
}

int Decompress(jpeg_decompress_struct* cinfo, JpegErrors* errors, uint8_t* pixels,
               size_t expectedRowBytes, int* components) {
  if (setjmp(errors->jump)) return 1;
  jpeg_start_decompress(cinfo);
  *components = cinfo->output_components;
  if (size_t(cinfo->output_width) * size_t(cinfo->output_components) != expectedRowBytes) {
    std::snprintf(errors->message, sizeof errors->message, "unexpected component count %d",
                  cinfo->output_components);
    return 1;
  }
  while (cinfo->output_scanline < cinfo->output_height) {
    JSAMPROW row = pixels + size_t(cinfo->output_scanline) * expectedRowBytes;
    jpeg_read_scanlines(cinfo, &row, 1);
  }
  jpeg_finish_decompress(cinfo);
  return 0;
}

int Compress(jpeg_compress_struct* cinfo, JpegErrors* errors, const FilePicture* picture,
             const uint8_t* pixels, int quality, unsigned char** buffer, unsigned long* size) {
  if (setjmp(errors->jump)) return 1;
  jpeg_mem_dest(cinfo, buffer, size);
  cinfo->image_width = JDIMENSION(picture->width);
  cinfo->image_height = JDIMENSION(picture->height);
  cinfo->input_components = PlanesOf(picture->mode);
  cinfo->in_color_space = picture->mode == PixelMode::kGrey  ? JCS_GRAYSCALE
                          : picture->mode == PixelMode::kRGB ? JCS_RGB
                                                             : JCS_CMYK;
  jpeg_set_defaults(cinfo);
  if (picture->mode == PixelMode::kCMYK) jpeg_set_colorspace(cinfo, JCS_CMYK);
  jpeg_set_quality(cinfo, quality, TRUE);
  jpeg_start_compress(cinfo, TRUE);
  size_t rowBytes = size_t(picture->width) * size_t(cinfo->input_components);
  while (cinfo->next_scanline < cinfo->image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(pixels + size_t(cinfo->next_scanline) * rowBytes);
    jpeg_write_scanlines(cinfo, &row, 1);
  }
  jpeg_finish_compress(cinfo);
  return 0;
}

}  // namespace

bool LooksLikeJpeg(const uint8_t* data, size_t size) {
  return size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF;
}

bool DecodeJpeg(const uint8_t* data, size_t size, FilePicture* picture, std::string* error) {
  if (!LooksLikeJpeg(data, size)) {
    *error = "not a JPEG file";
    return false;
  }
  jpeg_decompress_struct cinfo;
  JpegErrors errors;
  SetUpErrors(&errors);
  cinfo.err = &errors.manager;
  jpeg_create_decompress(&cinfo);

  bool ok = false;
  JpegHeader header{};
  std::string failure;
  if (ReadHeader(&cinfo, &errors, data, size, &header) == 0) {
    if (!CheckPictureSize(header.width, header.height, &failure)) {
      jpeg_destroy_decompress(&cinfo);
      *error = failure;
      return false;
    }
    picture->width = int32_t(header.width);
    picture->height = int32_t(header.height);
    picture->mode = cinfo.out_color_space == JCS_GRAYSCALE ? PixelMode::kGrey
                    : cinfo.out_color_space == JCS_CMYK   ? PixelMode::kCMYK
                                                          : PixelMode::kRGB;
    size_t rowBytes = size_t(header.width) * size_t(PlanesOf(picture->mode));
    picture->pixels.assign(rowBytes * header.height, 0);
    int components = 0;
    ok = Decompress(&cinfo, &errors, picture->pixels.data(), rowBytes, &components) == 0 &&
         errors.manager.num_warnings == 0;
  }
  jpeg_destroy_decompress(&cinfo);
  if (!ok) {
    *error = std::string("the JPEG file is damaged or truncated: ") + errors.message;
    picture->pixels.clear();
    return false;
  }
  // Inks are amounts in a file picture; Adobe's files store them inverted.
  if (picture->mode == PixelMode::kCMYK && header.adobe)
    for (uint8_t& value : picture->pixels) value = uint8_t(255 - value);
  return true;
}

bool EncodeJpeg(const FilePicture& picture, int quality, std::vector<uint8_t>* out,
                std::string* error) {
  std::vector<uint8_t> inverted;
  const uint8_t* pixels = picture.pixels.data();
  if (picture.mode == PixelMode::kCMYK) {
    inverted.resize(picture.pixels.size());
    for (size_t i = 0; i < inverted.size(); ++i) inverted[i] = uint8_t(255 - picture.pixels[i]);
    pixels = inverted.data();
  }
  jpeg_compress_struct cinfo;
  JpegErrors errors;
  SetUpErrors(&errors);
  cinfo.err = &errors.manager;
  jpeg_create_compress(&cinfo);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  bool ok = Compress(&cinfo, &errors, &picture, pixels, quality, &buffer, &size) == 0;
  jpeg_destroy_compress(&cinfo);
  if (ok) out->assign(buffer, buffer + size);
  else *error = std::string("cannot encode JPEG: ") + errors.message;
  std::free(buffer);
  return ok;
}

}  // namespace fancy
