// The Knurl's lighting: the picture lit as if embossed on the height field.
#pragma once

#include <cstdint>

#include "frame/fixed.h"
#include "relief/relief_maps.h"
#include "relief/relief_params.h"
#include "relief/relief_progress.h"

namespace fancy {

// Lights one pixel whose surface slopes by dx and dy (height differences
// across two pixels; y up the picture). channels are the pixel's bytes
// widened by << 8, planes of them (at most 4); out gets as many values,
// unclamped. Diffuse light scales the channels; a specular highlight of
// size bright and power exponent is added: in CMYK (imageMode 4, four
// planes) to black alone, as far as the inks can take it; in Lab (mode 9) to
// lightness, with a and b set to neutral 0.5; otherwise to every channel.
void ShadePixel(int32_t planes, int16_t imageMode, const Fixed* channels, Fixed dx, Fixed dy,
                Fixed exponent, Fixed bright, const Fixed light[3], Fixed* out);

// Where a band of rows lies: its first row in the field, its size, and its
// pixels in the host's buffers (planes interleaved).
struct ReliefBand {
  int32_t fieldTop;  // the band's first row, in rows of the field
  int32_t rows;
  int32_t columns;   // the field's width
  int32_t planes;
  int16_t imageMode;
  const uint8_t* source;
  int32_t sourceRowBytes;
  uint8_t* target;
  int32_t targetRowBytes;
};

// Lights every pixel of the band. Slopes come from the whole field, so a band
// lights its edge rows as the rows round them say; at the field's first and
// last column (or row) the one-sided difference is doubled. Where the field
// is flat the pixel is copied; where it is nearly flat the lit value slides
// back to the picture's own. Returns 0, or -128 when the abort callback,
// asked once a row, says stop.
int16_t EmbossBand(const HeightMap* field, const ReliefBand& band, const ReliefNumbers& numbers,
                   ReliefProgress* progress);

}  // namespace fancy
