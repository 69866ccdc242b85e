// The module's string table: every text shown to the user, keyed by its
// numeric id, with the texts exactly as the system has them. Each subsystem
// keeps its rows in its own strings.inc beside its sources.
#pragma once

#include <cstdint>

namespace fancy {

// The text of a string id, or null when the table has none.
const char* FindString(uint32_t id);

// Copies the string into a rotating buffer of 2304 bytes and returns it. Each
// call appends at most 256 bytes (the text is cut to 255 characters); the
// buffer restarts from its beginning once a string would pass its end. A few
// such strings may be held at once, not many. An absent id gives "".
const char* LoadTempString(uint32_t id);

// Copies text into the same rotating buffer under the same rules (null reads
// as ""); for texts that are put together before they are shown.
const char* CopyTempString(const char* text);

// The first id that two rows of the table share, or 0. Each subsystem picks
// its own ids, so a clash would silently show the wrong text; a test keeps
// the table free of them.
uint32_t StringTableDuplicateId();

}  // namespace fancy
