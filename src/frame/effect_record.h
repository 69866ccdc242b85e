// EffectRecord: an effect's live settings, kept by the host in `parameters`
// (a ModuleHandle) from run to run. Every record begins with the same head;
// dialogs edit the record in place.
#pragma once

#include <cstddef>
#include <cstdint>

#include "colour/clr_color.h"
#include "frame/host_record.h"
#include "frame/module_handle.h"
#include "frame/result_codes.h"

namespace fancy {

struct EffectHead {
  int32_t filterId;     // 200..203
  int32_t effectClass;  // 1 stroke, 2 tile, 3 relief
};

// How one stroke attribute varies over the picture.
struct VariationControl {
  int32_t mode;
  int32_t first;
  int32_t second;
  int32_t spread;
};

// Paint Brushka's record. Everything but brushButton, loadedBrushPath and
// styleDirty can be rebuilt from the style file; those three belong to the
// dialog.
struct StrokeRecord {
  EffectHead head;
  char styleName[40];         // current style, and its section in the style file
  char brushPath[260];        // full path of the current brush file
  char loadedBrushPath[260];  // last brush taken through the Load button
  int32_t brushButton;        // 357..363, 0 when none
  int32_t layering;           // 345, 346 or 347
  int32_t density;            // 1..100
  int32_t seed;               // 1..999
  int32_t horizontalVariation;  // 0..100
  int32_t verticalVariation;    // 0..100
  int32_t brushColorMode;     // 0 from image, 1 solid
  int32_t backgroundMode;     // 0 from image, 1 solid
  CLRColor brushColor;
  CLRColor backgroundColor;
  int32_t hueVariation;         // 0..100
  int32_t saturationVariation;  // 0..100
  int32_t brightnessVariation;  // 0..100
  VariationControl size;
  VariationControl angle;
  VariationControl transparency;
  double xDistVal;  // centre x, 0..1 of the width
  double yDistVal;  // centre y, 0..1 of the height
  int32_t writeable;   // Save and Delete may touch this style
  int32_t styleDirty;  // set by any edit, cleared by Save and by loading
};
static_assert(offsetof(StrokeRecord, styleName) == 8);
static_assert(offsetof(StrokeRecord, brushButton) == 568);
static_assert(offsetof(StrokeRecord, brushColor) == 600);
static_assert(offsetof(StrokeRecord, size) == 636);
// The doubles sit on their natural boundary, after 4 bytes of padding.
static_assert(offsetof(StrokeRecord, xDistVal) == 688);
static_assert(sizeof(StrokeRecord) == 712);

// The EffectRecord behind the host's `parameters`, or null when there is none.
inline EffectHead* EffectRecordOf(const FilterRecord* record) {
  if (!record || !record->parameters) return nullptr;
  return static_cast<EffectHead*>(ModuleHandleData(record->parameters));
}

// EffectClass of a FilterId; 0 for an id out of range.
constexpr int32_t EffectClassOf(int32_t filterId) {
  switch (filterId) {
    case kFilterBrushka: return kClassStroke;
    case kFilterTessaris: return kClassTile;
    case kFilterGlass:
    case kFilterKnurl: return kClassRelief;
    default: return 0;
  }
}

}  // namespace fancy
