// Profile files: the text "INI" format with the semantics of the Windows
// private-profile calls, implemented here so that every platform reads and
// writes the same files the same way.
//
// Names of sections and keys compare case-insensitively. The first of two
// duplicate sections or keys is the one read, and the one a write changes;
// name lists give each name once. Lines starting with ";" are comments; a
// line without "=" is a key without a value (it is listed, and reads as the
// default). Every write goes to a temporary file in the same folder that is
// then renamed over the old one, so a crash or a full disk never leaves a
// half-written file; a write is durable at once. A rewrite keeps every line it
// does not change as it was, and new lines take the file's own line end
// ("\r\n" in a new file, the form the sibling programs on Windows write).
#pragma once

#include <cstdint>

namespace fancy {

// GetPrivateProfileString. With section null: the section names, each
// zero-terminated, the list ended by a second zero. With key null: the key
// names of the section, in the same form (a section without keys, or none,
// answers defaultValue instead). Otherwise the value of the key, with
// blanks round it and one pair of enclosing quotes removed, or defaultValue
// (null reads as ""; trailing blanks are not part of it) when the key is
// missing. The result is cut to size - 1 characters (a list to size - 2 with
// its two terminating zeros) and the return value is the number of characters
// copied, not counting the final zero; a cut value returns size - 1, a cut
// list size - 2.
uint32_t ProfileGetString(const char* section, const char* key, const char* defaultValue,
                          char* buffer, uint32_t size, const char* path);

// GetPrivateProfileInt: leading blanks, optional sign, decimal digits (or
// "0x" hex), anything after ignored; a value that does not start with a
// number reads as 0; a missing key or an empty value gives defaultValue.
uint32_t ProfileGetInt(const char* section, const char* key, int32_t defaultValue,
                       const char* path);

// WritePrivateProfileString. value null removes the key (every copy of it in
// the section that is read); key null removes the whole section (every
// section of the name); all three null flushes the profile cache of path
// (every write is already on disk, so the flush only answers success). A
// write that creates a section or key creates the file too. Returns false
// when the file could not be written, and for a name or value that would not
// read back (a line break in any, "=" in a key, an empty section or key); the
// old file is then left as it was.
bool ProfileWriteString(const char* section, const char* key, const char* value,
                        const char* path);

// GetPrivateProfileSection: the section's "key=value" lines (blanks round
// names and values taken off, quotes kept, comments left out), each
// zero-terminated, ended by a second zero; cut as ProfileGetString cuts lists.
uint32_t ProfileGetSection(const char* section, char* buffer, uint32_t size, const char* path);

}  // namespace fancy
