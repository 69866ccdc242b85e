// Stand-ins for the entry points of the drawing library that a DrawContext
// frees with itself, so that the compositor links before the drawing code
// exists. Remove each when its owner lands. Until then nothing makes these
// objects, so a context never holds one.
#include <cstdlib>

#include "imaging/draw_context.h"

namespace fancy {

void NibFree(Nib* nib) { std::free(nib); }
void TextureFree(Texture* texture) { std::free(texture); }
void PaintSpecFree(PaintSpec* paint) { std::free(paint); }

}  // namespace fancy
