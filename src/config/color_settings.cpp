#include "config/color_settings.h"

#include "config/config.h"
#include "platform/profile.h"

namespace fancy {

namespace {

constexpr const char* kSection = "Color Calibration";

ColorSettings gColorSettings;
bool gColorSettingsRead = false;

ColorSettings Defaults() {
  ColorSettings s = {};
  s.cmykDisplayPercent = 1;
  s.gamutAlarmTransparency = 128;
  s.profileMatchMode = 0;
  s.monRenderMode = 2;
  s.scnRenderMode = 1;
  s.prnPhotoRenderMode = 1;
  s.prnIllustRenderMode = 3;
  s.colorCorrectText = 1;
  s.grayConvertsToCMYK_K = 1;
  s.focoltoneAsSpot = 1;
  s.toyoAsSpot = 1;
  s.dicAsSpot = 1;
  s.compSimsSeps = 0;
  s.showSpotAsProcess = 0;
  return s;
}

int32_t ReadInt(const char* key, int32_t fallback, const char* path) {
  return static_cast<int32_t>(ProfileGetInt(kSection, key, fallback, path));
}

// Color.ini lies in the configuration folder; without a folder the defaults
// stand.
void ReadColorSettings() {
  ColorSettings s = Defaults();
  const char* path = ConfigColorIniPath();
  ProfileGetString(kSection, "SystemColorProfile", "profiles.ccm", s.systemColorProfile,
                   sizeof s.systemColorProfile, path);
  ProfileGetString(kSection, "GamutAlarmColor", "", s.gamutAlarmColor, sizeof s.gamutAlarmColor,
                   path);
  s.cmykDisplayPercent = ReadInt("CMYKDisplayPercent", s.cmykDisplayPercent, path);
  s.gamutAlarmTransparency = ReadInt("GamutAlarmTransparency", s.gamutAlarmTransparency, path);
  s.profileMatchMode = ReadInt("ProfileMatchMode", s.profileMatchMode, path);
  s.monRenderMode = ReadInt("MonRenderMode", s.monRenderMode, path);
  s.scnRenderMode = ReadInt("ScnRenderMode", s.scnRenderMode, path);
  s.prnPhotoRenderMode = ReadInt("PrnPhotoRenderMode", s.prnPhotoRenderMode, path);
  s.prnIllustRenderMode = ReadInt("PrnIllustRenderMode", s.prnIllustRenderMode, path);
  s.colorCorrectText = ReadInt("ColorCorrectText", s.colorCorrectText, path);
  s.grayConvertsToCMYK_K = ReadInt("GrayConvertsToCMYK_K", s.grayConvertsToCMYK_K, path);
  s.focoltoneAsSpot = ReadInt("FocoltoneAsSpot", s.focoltoneAsSpot, path);
  s.toyoAsSpot = ReadInt("ToyoAsSpot", s.toyoAsSpot, path);
  s.dicAsSpot = ReadInt("DICAsSpot", s.dicAsSpot, path);
  s.compSimsSeps = ReadInt("CompSimsSeps", s.compSimsSeps, path);
  s.showSpotAsProcess = ReadInt("ShowSpotAsProcess", s.showSpotAsProcess, path);
  gColorSettings = s;
  gColorSettingsRead = true;
}

ColorSettings& Settings() {
  if (!gColorSettingsRead) ReadColorSettings();
  return gColorSettings;
}

int32_t Exchange(int32_t* field, int32_t value) {
  int32_t former = *field;
  *field = value;
  return former;
}

}  // namespace

const ColorSettings& GetColorSettings() { return Settings(); }

void ColorSettingsReset() { gColorSettingsRead = false; }

// A flag is on only when its value is exactly 1: 2 or -1 are off.
bool CMYKDisplayPercent() { return Settings().cmykDisplayPercent == 1; }
bool GrayConvertsToCMYK_K() { return Settings().grayConvertsToCMYK_K == 1; }
bool FocoltoneAsSpot() { return Settings().focoltoneAsSpot == 1; }
bool ToyoAsSpot() { return Settings().toyoAsSpot == 1; }
bool DICAsSpot() { return Settings().dicAsSpot == 1; }
bool ShowSpotAsProcess() { return Settings().showSpotAsProcess == 1; }
bool CompSimsSeps() { return Settings().compSimsSeps == 1; }

int32_t SetCMYKDisplayPercent(int32_t value) {
  return Exchange(&Settings().cmykDisplayPercent, value);
}
int32_t SetGrayConvertsToCMYK_K(int32_t value) {
  return Exchange(&Settings().grayConvertsToCMYK_K, value);
}
int32_t SetFocoltoneAsSpot(int32_t value) { return Exchange(&Settings().focoltoneAsSpot, value); }
int32_t SetToyoAsSpot(int32_t value) { return Exchange(&Settings().toyoAsSpot, value); }
int32_t SetDICAsSpot(int32_t value) { return Exchange(&Settings().dicAsSpot, value); }
int32_t SetShowSpotAsProcess(int32_t value) {
  return Exchange(&Settings().showSpotAsProcess, value);
}
int32_t SetCompSimsSeps(int32_t value) { return Exchange(&Settings().compSimsSeps, value); }

}  // namespace fancy
