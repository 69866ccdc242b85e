// Profile files: the text "INI" format with the semantics of the Windows
// private-profile calls, implemented here so that every platform reads and
// writes the same files the same way, and a file brought from Windows reads
// here as it reads there.
//
// Reading a file:
// - "\r\n", "\n" and a lone "\r" each end a line. Blanks (space, tab, vertical
//   tab, form feed) round a line, a name or a value are not part of it.
// - A line starting with ";" is a comment.
// - A line starting with "[" is a section header. The name runs to the first
//   "]" (so no section name holds a "]"), or to the line's end when there is
//   none, "[name" being the section "name"; blanks inside the brackets round
//   the name are not part of it ("[ s ]" is "s"), and whatever follows the
//   "]" is ignored. "[]" is a section with an empty name. Lines before the
//   first header belong to no section and cannot be read.
// - A line with "=" is a key: the name before the first "=", the value after
//   it. Any other line is not a key: it is not listed among the keys and
//   reads as missing, though the section's lines (ProfileGetSection) hold it.
// - Names compare case-insensitively. The first of two sections of a name is
//   the one read, and the one a write changes; so is the first of two keys.
//   The lists of sections and of keys name every occurrence, duplicates and
//   names equal but for case included, leaving out only empty names.
// - A file starting with the UTF-16LE mark (FF FE) is read as UTF-16 and its
//   text given in UTF-8, the code page of the calls here; a write keeps it
//   UTF-16 with its mark. Any other mark is not one: the UTF-8 mark is three
//   bytes of the first line (a header on that line is then no header), and
//   a UTF-16BE file reads as bytes, so its names are never found.
// - Lines and names may be of any length (the file, up to 16 MiB; a larger
//   one reads as empty and is not written). A value read by key of 65536
//   characters or more reads as its first (length mod 65536) characters, as
//   the Windows calls, which keep that length in 16 bits, read it.
// - The section and key names a caller gives lose the spaces round them
//   (" k " finds "k"); other blanks stay, so "\tk" finds nothing.
//
// Writing: every write goes to a temporary file in the same folder that is
// then renamed over the old one, so a crash or a full disk never leaves a
// half-written file; a write is durable at once. A rewrite keeps every line
// it does not change as it was, and new lines take the file's own line end
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
// list size - 2. A list that fills the buffer exactly, its final zero
// included, counts as cut.
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
// read back (a line break in any, "=" in a key, "]" in a section, an empty
// section or key, other blanks than spaces round a name); the
// old file is then left as it was. Section and key names lose the spaces
// round them, as they do when read; the value is written as given.
bool ProfileWriteString(const char* section, const char* key, const char* value,
                        const char* path);

// GetPrivateProfileSection: the section's lines, "key=value" for a key and a
// line without "=" as it stands (blanks round names and values taken off,
// quotes kept, comments and blank lines left out), each
// zero-terminated, ended by a second zero; cut as ProfileGetString cuts lists.
uint32_t ProfileGetSection(const char* section, char* buffer, uint32_t size, const char* path);

}  // namespace fancy
