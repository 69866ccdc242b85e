// Colour strings: the text form in which a colour travels through
// configuration keys, as "RGB255,255,0,0,USER,USER" (keyword, components,
// palette keyword, and for custom CMYK and RGB the palette first taken from).
#include <cstdio>
#include <cstring>

#include "colour/clr_color.h"

namespace fancy {

namespace {

// Keywords of the palette codes as the printer writes them; "USER" for codes
// that print none.
const char* const kPaletteKeywords[17] = {
    "USER",     "TRU",    "PAN_PROC", "PAN_SPOT", "IMAGE", "USER",    "CUSFIXED",
    "RGBSTD",   "FOCTONE", "DUPONT",  "TOYO",     "DIC",   "PAN_HEX", "LABPAL",
    "NETSCAPE", "EXPLORER", "USERINKS",
};

// The palette slot of a custom CMYK or RGB colour: 12 (Hexachrome) prints as
// "USER" there, but as "PAN_HEX" in the subPalette slot.
const char* PaletteKeyword(uint8_t code, bool subPalette) {
  if (code == kCLRPalHexachrome && !subPalette) return "USER";
  if (code == 0 || code > 16) return "USER";
  return kPaletteKeywords[code];
}

struct KeywordWord {
  const char* keyword;
  uint16_t word;
};

// The palette token: the palette word it reads as.
const KeywordWord kPaletteTokens[] = {
    {"TRU", 1},      {"PAN_SPOT", 3},  {"PAN_HEX", 12},    {"PAN_PROC", 2}, {"IMAGE", 4},
    {"USERINKS", 16}, {"CUSFIXED", 6}, {"RGBSTD", 7},     {"FOCTONE", 8},  {"DUPONT", 9},
    {"TOYO", 10},    {"DIC", 11},      {"LABPAL", 13},    {"NETSCAPE", 14}, {"EXPLORER", 15},
};

// The subPalette token after "USER": palette 5 with that origin. The custom
// fixed palette and "USER" itself are not read here, so a colour first taken
// from the custom fixed palette loses that origin through its text form.
const KeywordWord kSubPaletteTokens[] = {
    {"TRU", 261},      {"PAN_SPOT", 773}, {"PAN_HEX", 3077}, {"PAN_PROC", 517},
    {"IMAGE", 1029},   {"RGBSTD", 1797},  {"FOCTONE", 2053}, {"DUPONT", 2309},
    {"TOYO", 2565},    {"DIC", 2821},     {"LABPAL", 3333},  {"NETSCAPE", 3589},
    {"EXPLORER", 3845}, {"USERINKS", 4101},
};

template <size_t N>
uint16_t LookUpWord(const KeywordWord (&table)[N], const char* token) {
  if (!token) return kCLRPalUser;
  for (const KeywordWord& row : table)
    if (std::strcmp(row.keyword, token) == 0) return row.word;
  return kCLRPalUser;
}

struct ModelKeyword {
  const char* keyword;
  uint16_t model;
};

// Tried in this order; PANTONE becomes 14 when its palette token is PAN_HEX.
const ModelKeyword kModelKeywords[] = {
    {"PANTONE", kCLRPantone},   {"CMYK", kCLRCMYK},       {"CMYK255", kCLRCMYK255},
    {"CMYK100", kCLRCMYK100},   {"CMY255", kCLRCMY255},   {"RGB255", kCLRRGB255},
    {"HSB", kCLRHSB},           {"HLS", kCLRHLS},         {"BW", kCLRBW},
    {"GRAY255", kCLRGray255},   {"YIQ255", kCLRYIQ255},   {"LAB", kCLRLab},
    {"LAB255", kCLRLab255},
};

// How the tokens after the first fill a model: the token index of the
// palette keyword and of the subPalette keyword (0 for none).
struct ModelRow {
  int paletteToken;
  int subPaletteToken;
};

bool RowFor(int model, ModelRow* row) {
  switch (model) {
    case kCLRPantone:
    case kCLRHexSpot: *row = {3, 0}; return true;
    case kCLRCMYK: *row = {5, 6}; return true;
    case kCLRCMYK255:
    case kCLRCMYK100: *row = {5, 0}; return true;
    case kCLRCMY255:
    case kCLRYIQ255:
    case kCLRLab255:
    case kCLRLab: *row = {4, 0}; return true;
    case kCLRRGB255: *row = {4, 5}; return true;
    case kCLRHSB:
    case kCLRHLS: *row = {4, 0}; return true;
    case kCLRBW:
    case kCLRGray255: *row = {2, 0}; return true;
    default: return false;
  }
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Decimal digits from p on, wrapping as a 32-bit value would.
uint32_t ReadDigits(const char* p) {
  uint32_t value = 0;
  for (; IsDigit(*p); ++p) value = value * 10u + static_cast<uint32_t>(*p - '0');
  return value;
}

// A component token: searched forward for its first digit; no digit reads 0.
// With allowMinus a "-" also starts the number, which is then negative.
int32_t TokenNumber(const char* token, bool allowMinus) {
  if (!token) return 0;
  const char* p = token;
  while (*p && !IsDigit(*p) && !(allowMinus && *p == '-')) ++p;
  if (*p == '-') return static_cast<int32_t>(0u - ReadDigits(p + 1));
  return static_cast<int32_t>(ReadDigits(p));
}

// atoi: leading blanks, a sign, digits.
int32_t ParseInt(const char* p) {
  while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r' || *p == '\v' || *p == '\f') ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  uint32_t value = ReadDigits(p);
  return static_cast<int32_t>(negative ? 0u - value : value);
}

void FillComponents(CLRColor* c, int model, char* const* tokens) {
  auto number = [&](int i) { return static_cast<uint32_t>(TokenNumber(tokens[i], false)); };
  uint8_t* v = c->value8;
  switch (model) {
    case kCLRPantone:
    case kCLRHexSpot:
      CLRSetU16(c, 8, number(1));
      CLRSetU16(c, 10, number(2));
      break;
    case kCLRCMYK:
    case kCLRCMYK255:
    case kCLRCMYK100:
      for (int i = 0; i < 4; ++i) v[i] = static_cast<uint8_t>(number(i + 1));
      break;
    case kCLRCMY255:
    case kCLRYIQ255:
    case kCLRLab255:
      for (int i = 0; i < 3; ++i) v[i] = static_cast<uint8_t>(number(i + 1));
      break;
    case kCLRLab:
      v[0] = static_cast<uint8_t>(number(1));
      v[1] = static_cast<uint8_t>(TokenNumber(tokens[2], true));
      v[2] = static_cast<uint8_t>(TokenNumber(tokens[3], true));
      break;
    case kCLRRGB255:  // R, G, B in the text; blue first in the record
      v[2] = static_cast<uint8_t>(number(1));
      v[1] = static_cast<uint8_t>(number(2));
      v[0] = static_cast<uint8_t>(number(3));
      break;
    case kCLRHSB:
    case kCLRHLS:
      CLRSetU16(c, 8, number(1));
      v[2] = static_cast<uint8_t>(number(2));
      v[3] = static_cast<uint8_t>(number(3));
      break;
    case kCLRBW:
      CLRSetI32(c, 8, number(1));
      break;
    case kCLRGray255:
      v[0] = static_cast<uint8_t>(number(1));
      break;
    default:
      break;
  }
}

int ValidateOrWhite(CLRColor* color) {
  if (CLRValidate(color)) return 1;
  CLRSetWhite(color);
  return 0;
}

}  // namespace

void CLRColorToText(CLRColor* color, char* buffer, size_t size) {
  if (!buffer || size == 0) return;
  buffer[0] = '\0';
  if (color->model == kCLRNone) color->model = kCLRCMYK;

  const char* palette = "USER";
  const char* subPalette = "USER";
  int model = color->model;
  if (model == kCLRCMYK || model == kCLRRGB255) {
    palette = PaletteKeyword(color->palette, false);
    if (color->palette == kCLRPalUser) subPalette = PaletteKeyword(color->subPalette, true);
  }
  bool custom = color->palette == kCLRPalUser;
  const uint8_t* v = color->value8;
  int hue = CLRGetI16(color, 8);

  switch (model) {
    case kCLRPantone:
    case kCLRHexSpot:
      std::snprintf(buffer, size, "%s,%d,%d,%s", "PANTONE", CLRGetI16(color, 8),
                    CLRGetU16(color, 10), model == kCLRPantone ? "PAN_SPOT" : "PAN_HEX");
      break;
    case kCLRCMYK:
      if (custom)
        std::snprintf(buffer, size, "%s,%d,%d,%d,%d,%s,%s", "CMYK", v[0], v[1], v[2], v[3],
                      palette, subPalette);
      else
        std::snprintf(buffer, size, "%s,%d,%d,%d,%d,%s", "CMYK", v[0], v[1], v[2], v[3],
                      palette);
      break;
    case kCLRCMYK255:
    case kCLRCMYK100:
      std::snprintf(buffer, size, "%s,%d,%d,%d,%d,%s",
                    model == kCLRCMYK255 ? "CMYK255" : "CMYK100", v[0], v[1], v[2], v[3],
                    "USER");
      break;
    case kCLRCMY255:
      std::snprintf(buffer, size, "%s,%d,%d,%d,%s", "CMY255", v[0], v[1], v[2], "USER");
      break;
    case kCLRRGB255:
      if (custom)
        std::snprintf(buffer, size, "%s,%d,%d,%d,%s,%s", "RGB255", v[2], v[1], v[0], palette,
                      subPalette);
      else
        std::snprintf(buffer, size, "%s,%d,%d,%d,%s", "RGB255", v[2], v[1], v[0], palette);
      break;
    case kCLRHSB:
    case kCLRHLS:
      std::snprintf(buffer, size, "%s,%d,%d,%d,%s", model == kCLRHSB ? "HSB" : "HLS", hue, v[2],
                    v[3], "USER");
      break;
    case kCLRBW:
      std::snprintf(buffer, size, "%s,%d,%s", "BW", static_cast<int>(CLRGetI32(color, 8)),
                    "USER");
      break;
    case kCLRGray255:
      std::snprintf(buffer, size, "%s,%d,%s", "GRAY255", v[0], "USER");
      break;
    case kCLRYIQ255:
    case kCLRLab255:
      std::snprintf(buffer, size, "%s,%d,%d,%d,%s", model == kCLRYIQ255 ? "YIQ255" : "LAB255",
                    v[0], v[1], v[2], "USER");
      break;
    case kCLRLab:
      std::snprintf(buffer, size, "%s,%d,%d,%d,%s", "LAB", v[0], static_cast<int8_t>(v[1]),
                    static_cast<int8_t>(v[2]), "USER");
      break;
    default:
      break;
  }
}

int CLRColorFromText(CLRColor* color, char* text) {
  if (!text) return ValidateOrWhite(color);
  // Cut at the commas, in place, into up to seven tokens; runs of commas
  // separate as one, as strtok does.
  bool hasComma = std::strchr(text, ',') != nullptr;
  char* tokens[8] = {};
  int count = 0;
  char* p = text;
  while (count < 7) {
    while (*p == ',') ++p;
    if (!*p) break;
    tokens[count++] = p;
    while (*p && *p != ',') ++p;
    if (*p) *p++ = '\0';
  }

  if (count == 0) return ValidateOrWhite(color);
  if (count == 1 && !hasComma) {
    CLRSetWhite(color);
    return 0;
  }

  int model = -1;
  bool keyword = tokens[0][0] >= 'A' && tokens[0][0] <= 'Z';
  if (keyword) {
    for (const ModelKeyword& row : kModelKeywords)
      if (std::strcmp(row.keyword, tokens[0]) == 0) {
        model = row.model;
        break;
      }
    if (model == kCLRPantone && tokens[3] && std::strcmp(tokens[3], "PAN_HEX") == 0)
      model = kCLRHexSpot;
  } else {
    // The older numeric form: "x<model>" first, then the components.
    const char* x = std::strchr(tokens[0], 'x');
    if (!x) return ValidateOrWhite(color);
    model = ParseInt(x + 1);
  }

  ModelRow row;
  if (model < 1 || model > 18 || !RowFor(model, &row)) {
    CLRSetWhite(color);
    return 0;
  }
  color->model = static_cast<uint16_t>(model);
  FillComponents(color, model, tokens);

  if (!keyword) {
    CLRSetPaletteWord(color, kCLRPalUser);
    return 1;
  }
  const char* paletteToken = tokens[row.paletteToken];
  uint16_t word = LookUpWord(kPaletteTokens, paletteToken);
  if (paletteToken && row.subPaletteToken && std::strcmp(paletteToken, "USER") == 0)
    word = LookUpWord(kSubPaletteTokens, tokens[row.subPaletteToken]);
  CLRSetPaletteWord(color, word);
  return 1;
}

}  // namespace fancy
