// Color.ini, section "Color Calibration": read at colour-layer start. Flags
// count as on only when their value is exactly 1. Each setter returns the
// former value; in this module a value changes only by reading the file.
#pragma once

#include <cstdint>

namespace fancy {

struct ColorSettings {
  int32_t cmykDisplayPercent;      // 1
  char systemColorProfile[260];    // "profiles.ccm"
  char gamutAlarmColor[64];        // "" (a colour string)
  int32_t gamutAlarmTransparency;  // 128
  int32_t profileMatchMode;        // 0
  int32_t monRenderMode;           // 2
  int32_t scnRenderMode;           // 1
  int32_t prnPhotoRenderMode;      // 1
  int32_t prnIllustRenderMode;     // 3
  int32_t colorCorrectText;        // 1
  int32_t grayConvertsToCMYK_K;    // 1
  int32_t focoltoneAsSpot;         // 1
  int32_t toyoAsSpot;              // 1
  int32_t dicAsSpot;               // 1
  int32_t compSimsSeps;            // 0
  int32_t showSpotAsProcess;       // 0
};

// The settings, read from Color.ini on first use (defaults where absent).
const ColorSettings& GetColorSettings();
// Re-reads the file on next use (tests, host set-up).
void ColorSettingsReset();

bool CMYKDisplayPercent();
bool GrayConvertsToCMYK_K();
bool FocoltoneAsSpot();
bool ToyoAsSpot();
bool DICAsSpot();
bool ShowSpotAsProcess();
bool CompSimsSeps();

int32_t SetCMYKDisplayPercent(int32_t value);
int32_t SetGrayConvertsToCMYK_K(int32_t value);
int32_t SetFocoltoneAsSpot(int32_t value);
int32_t SetToyoAsSpot(int32_t value);
int32_t SetDICAsSpot(int32_t value);
int32_t SetShowSpotAsProcess(int32_t value);
int32_t SetCompSimsSeps(int32_t value);

}  // namespace fancy
