// The parsed view of a profile file, shared by the profile calls and the
// registry stand-in. Lines keep their offsets into the text, so that a
// rewrite changes only the lines it means to and leaves every other byte
// (comments, spacing, line ends) as it was. The rules of the parse are told
// in platform/profile.h.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fancy {

// kKey is a line with "="; kText any other line that is not blank, a
// comment or a section header (not a key, but one of the section's lines).
enum class ProfileLineKind : unsigned char { kBlank, kComment, kSection, kKey, kText };

struct ProfileLine {
  size_t begin;       // first byte of the line
  size_t contentEnd;  // end of its text, before "\r\n", "\n" or "\r"
  size_t end;         // first byte of the next line
  ProfileLineKind kind;
  size_t nameBegin, nameEnd;    // section or key name (a text line's text), blanks taken off
  size_t valueBegin, valueEnd;  // a key's value, blanks taken off
};

struct ProfileText {
  std::string text;
  std::vector<ProfileLine> lines;
  // The file is UTF-16LE with its mark; text holds it in UTF-8, and wideTail
  // a last odd byte, which a rewrite keeps.
  bool wide = false;
  std::string wideTail;

  std::string_view Name(const ProfileLine& line) const {
    return std::string_view(text).substr(line.nameBegin, line.nameEnd - line.nameBegin);
  }
  std::string_view Value(const ProfileLine& line) const {
    return std::string_view(text).substr(line.valueBegin, line.valueEnd - line.valueBegin);
  }
};

// Splits text into lines.
void ProfileParse(std::string text, ProfileText* out);

// Reads and parses path. A missing file parses as empty and sets *exists to
// false; false is returned only when an existing file cannot be read.
bool ProfileLoad(const char* path, ProfileText* out, bool* exists);

// The bytes that store text in the form profile was read in.
std::string ProfileFileBytes(const ProfileText& profile, const std::string& text);

// A section or key name as a caller gives it, spaces round it taken off.
std::string_view ProfileRequestName(const char* name);

// Names compare without regard to ASCII case.
bool ProfileNameEqual(std::string_view a, std::string_view b);

// The line of the first section header named name, or -1. The lines before
// the first header belong to no section and are never found.
int ProfileFindSection(const ProfileText& profile, std::string_view name);
// The line after the last one of the section whose header is at header.
size_t ProfileSectionEnd(const ProfileText& profile, size_t header);
// The first key line named key in the section at header, or -1.
int ProfileFindKey(const ProfileText& profile, size_t header, std::string_view key);

// The value of a key as it stands in the file (blanks taken off, quotes
// kept): false when the file, the section or the key is absent.
bool ProfileLookup(const char* section, const char* key, const char* path, std::string* value);

}  // namespace fancy
