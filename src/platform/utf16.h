// UTF-16LE text and its UTF-8 form, for the profile files kept in UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace fancy {

// Code units of two bytes each (a last odd byte is not read). A surrogate
// without its partner keeps its own three-byte form, so that the way back
// gives the same code units.
std::string Utf16LeToUtf8(std::string_view bytes);

// The way back. A byte that starts no valid sequence becomes U+FFFD.
std::string Utf8ToUtf16Le(std::string_view text);

}  // namespace fancy
