// DrawContext: the settings of one drawing client (colours, merge mode,
// opacity, filter and dither choices, progress) and the map from target to
// source coordinates that a scaled composite uses. A null context stands for
// the defaults everywhere it is accepted.
#pragma once

#include <cstdint>

#include "colour/clr_color.h"
#include "imaging/rect.h"

namespace fancy {

// Objects of the drawing library that a context owns.
struct Nib;
struct Texture;
struct PaintSpec;
void NibFree(Nib* nib);
void TextureFree(Texture* texture);
void PaintSpecFree(PaintSpec* paint);

// Called with (done, total, user data); answering 0 stops the work.
using ProgressFn = int (*)(int32_t done, int32_t total, void* data);

struct Point32 {
  int32_t x;
  int32_t y;
};

// How one axis maps target to source, from the signs of num (target) and den
// (source).
enum MapKind : int32_t {
  kMapNone = 0,          // num or den is 0: everything maps to the origin
  kMapIdentity = 1,      // num = den
  kMapMirror = 2,        // num = -den
  kMapScale = 3,         // both positive
  kMapScaleSourceFlip = 4,  // num > 0, den < 0
  kMapScaleTargetFlip = 5,  // num < 0, den > 0
  kMapScaleBothFlip = 6,    // both negative
};

enum : int32_t {
  kFilterNearest = 1,
  kFilterSmooth = 2,
};

enum : int32_t {
  kDitherNone = 1,
  kDitherDiffusion = 2,
  kDitherOrdered = 3,
  kDitherMatrix4 = 4,
  kDitherMatrix5 = 5,
  kDitherMatrix6 = 6,
};

struct DrawContext {
  Nib* nib;              // owned
  Texture* texture;      // owned
  CLRColor foreground;   // RGB, blue 200
  CLRColor background;   // RGB, green and red 255, blue 0
  int32_t ditherMode;    // 3
  int32_t filterMode;    // 1 nearest, 2 smooth
  int32_t mergeMode;     // 0
  int32_t antialias;     // 0
  uint8_t opacity;       // 255
  PaintSpec* paint;      // owned; null paints solid in the foreground
  Point32 penPosition;   // target space
  int32_t scaleXNum;     // target size of the map, signed
  int32_t scaleYNum;
  int32_t scaleXDen;     // source size of the map, signed
  int32_t scaleYDen;
  int32_t mapXKind;      // MapKind
  int32_t mapYKind;
  double ratioX;         // |num / den|
  double ratioY;
  double inverseX;       // |den / num|
  double inverseY;
  Point32 targetOrigin;
  Point32 sourceOrigin;
  ProgressFn progress;
  void* progressData;
  int32_t maskReadMode;  // 1; copied to every mask source of a region walk
};

// A context with the defaults, or null when memory fails.
DrawContext* DrawContextCreate();
// Frees the context and what it owns (nib, texture, paint). Null is ignored.
void DrawContextFree(DrawContext* context);
// The defaults, in place (owned objects are not freed: the caller's record
// is taken as holding none).
void DrawContextSetDefaults(DrawContext* context);

// Getters: a null context answers the default, except the merge mode, which
// answers 32 (no merge), so that a caller without a context merges nothing
// by accident.
uint8_t DrawContextGetOpacity(const DrawContext* context);
int32_t DrawContextGetMergeMode(const DrawContext* context);
int32_t DrawContextGetFilterMode(const DrawContext* context);
int32_t DrawContextGetDitherMode(const DrawContext* context);
int32_t DrawContextGetAntialias(const DrawContext* context);
int32_t DrawContextGetMaskReadMode(const DrawContext* context);
CLRColor DrawContextGetForeground(const DrawContext* context);
CLRColor DrawContextGetBackground(const DrawContext* context);

// Setters answer 1, or 0 for a null context.
int DrawContextSetOpacity(DrawContext* context, uint8_t opacity);
int DrawContextSetMergeMode(DrawContext* context, int32_t mode);
int DrawContextSetFilterMode(DrawContext* context, int32_t mode);
int DrawContextSetDitherMode(DrawContext* context, int32_t mode);
int DrawContextSetForeground(DrawContext* context, const CLRColor& colour);
int DrawContextSetBackground(DrawContext* context, const CLRColor& colour);
int DrawContextSetProgress(DrawContext* context, ProgressFn progress, void* data);

// The kind of an axis with target size num and source size den.
int32_t MapKindOf(int32_t num, int32_t den);

// Sets the scale (num is the target's signed size, den the source's) with
// its kinds, ratios and inverses. Answers 0 if either axis has kind 0 (the
// scale is stored all the same), 1 otherwise.
int DrawContextSetScale(DrawContext* context, int32_t xNum, int32_t xDen, int32_t yNum,
                        int32_t yDen);
int DrawContextSetOrigins(DrawContext* context, Point32 target, Point32 source);

// The source pixel of target pixel p: the pixel centre is mapped, so that a
// scale samples the source pixel whose area holds the centre.
Point32 DrawContextMapPoint(const DrawContext* context, Point32 p);
// The source rectangle of a target rectangle: both corners mapped, then
// ordered.
Rect DrawContextMapRect(const DrawContext* context, const Rect& r);
// The target pixels whose area meets the source rectangle: the cells covered
// whole and, at each side, one more where a cell is covered in part.
Rect DrawContextReverseMapRect(const DrawContext* context, const Rect& r);

}  // namespace fancy
