#include "platform/utf16.h"

#include <cstdint>

namespace fancy {

namespace {

void AppendUtf8(uint32_t c, std::string* out) {
  if (c < 0x80) {
    *out += static_cast<char>(c);
  } else if (c < 0x800) {
    *out += static_cast<char>(0xC0 | (c >> 6));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    *out += static_cast<char>(0xE0 | (c >> 12));
    *out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    *out += static_cast<char>(0xF0 | (c >> 18));
    *out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    *out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

void AppendUnit(uint32_t unit, std::string* out) {
  *out += static_cast<char>(unit & 0xFF);
  *out += static_cast<char>(unit >> 8);
}

bool IsContinuation(uint8_t b) { return (b & 0xC0) == 0x80; }

}  // namespace

std::string Utf16LeToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  size_t units = bytes.size() / 2;
  auto Unit = [&](size_t i) {
    return static_cast<uint32_t>(static_cast<uint8_t>(bytes[2 * i])) |
           static_cast<uint32_t>(static_cast<uint8_t>(bytes[2 * i + 1])) << 8;
  };
  for (size_t i = 0; i < units; ++i) {
    uint32_t c = Unit(i);
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < units) {
      uint32_t low = Unit(i + 1);
      if (low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    AppendUtf8(c, &out);
  }
  return out;
}

std::string Utf8ToUtf16Le(std::string_view text) {
  std::string out;
  out.reserve(text.size() * 2);
  size_t i = 0;
  while (i < text.size()) {
    uint8_t b = static_cast<uint8_t>(text[i]);
    auto At = [&](size_t k) { return static_cast<uint8_t>(text[i + k]); };
    size_t left = text.size() - i;
    uint32_t c = 0xFFFD;
    size_t length = 1;
    if (b < 0x80) {
      c = b;
    } else if (b >= 0xC2 && b < 0xE0 && left >= 2 && IsContinuation(At(1))) {
      c = (b & 0x1Fu) << 6 | (At(1) & 0x3Fu);
      length = 2;
    } else if (b >= 0xE0 && b < 0xF0 && left >= 3 && IsContinuation(At(1)) &&
               IsContinuation(At(2)) && (b != 0xE0 || At(1) >= 0xA0)) {
      // Surrogates are let through: they are how a lone one was carried.
      c = (b & 0x0Fu) << 12 | (At(1) & 0x3Fu) << 6 | (At(2) & 0x3Fu);
      length = 3;
    } else if (b >= 0xF0 && b < 0xF5 && left >= 4 && IsContinuation(At(1)) &&
               IsContinuation(At(2)) && IsContinuation(At(3)) && (b != 0xF0 || At(1) >= 0x90) &&
               (b != 0xF4 || At(1) < 0x90)) {
      c = (b & 0x07u) << 18 | (At(1) & 0x3Fu) << 12 | (At(2) & 0x3Fu) << 6 | (At(3) & 0x3Fu);
      length = 4;
    }
    if (c >= 0x10000) {
      AppendUnit(0xD800 + ((c - 0x10000) >> 10), &out);
      AppendUnit(0xDC00 + ((c - 0x10000) & 0x3FF), &out);
    } else {
      AppendUnit(c, &out);
    }
    i += length;
  }
  return out;
}

}  // namespace fancy
