// The host's pictures as Images of the module's image model, handed to the
// module through the HostExtension (sourceImage, maskImage).
//
// Both are storage kind 3 on fancyhost's own pixels, so the module sees the
// picture as it stands at the moment it reads, rows taken back included. A
// picture's Image has the host's pixel order and row step: type 5 for grey,
// type 1 (blue, green, red) for RGB, and type 3 for CMYK with the bytes as
// fancyhost stores them, inverted (255 is no ink). The rows the module gets
// carry the same bytes, and its previews feed an Image's rows through the
// code that takes the host's rows; an Image of another sense would make a
// preview differ from the run. Images the module makes or loads itself hold
// ink (255 full ink), and the effects invert where they mix the two.
#pragma once

#include <cstdint>

#include "frame/host_record.h"
#include "imaging/image.h"
#include "picture.h"

namespace fancy {

// The Image type that carries pixels of the mode: 5, 1 or 3.
int32_t ImageTypeOfMode(PixelMode mode);

// The resolution of an Image (thousandths of a dot an inch) for one of the
// record's (16.16 dots an inch); 0, unknown, for values not above 0.
int32_t ImageResolutionOf(Fixed dotsPerInch);

// An Image on the picture's pixels (not copied; the picture must outlive it
// and keep its buffer). Null when the picture is empty or memory runs out.
Image* MakePictureImage(HostImage* picture, Fixed xResolution, Fixed yResolution);

// A type 99 Image on a grey selection's bytes (0 outside, 255 fully inside).
// The module only reads it.
Image* MakeSelectionImage(const HostImage* mask, Fixed xResolution, Fixed yResolution);

// The selection's bounds in the mask, inclusive: top, left, bottom, right.
// An empty selection gives bottom and right below top and left.
void FindSelectionBounds(const HostImage& mask, int16_t bounds[4]);

}  // namespace fancy
