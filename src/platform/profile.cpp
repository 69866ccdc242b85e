#include "platform/profile.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"
#include "platform/profile_text.h"

namespace fancy {

namespace {

// Copies a value, cut to size - 1 characters; returns the count copied.
uint32_t CopyValue(std::string_view value, char* buffer, uint32_t size) {
  size_t n = value.size() < size - 1u ? value.size() : size - 1u;
  std::memcpy(buffer, value.data(), n);
  buffer[n] = '\0';
  return static_cast<uint32_t>(n);
}

// Copies a list of zero-terminated strings ended by a second zero. A list
// that does not fit, or only just fits (strings, their zeros and the final
// zero fill the buffer exactly), is cut to size - 2 characters and closed by
// two zeros, its last string short (or, when it just fits, whole but for its
// zero); the count then is size - 2.
uint32_t CopyList(const std::vector<std::string>& items, char* buffer, uint32_t size) {
  std::string joined;
  for (const std::string& item : items) {
    joined += item;
    joined += '\0';
  }
  if (joined.size() + 1 < size || joined.empty()) {
    std::memcpy(buffer, joined.data(), joined.size());
    buffer[joined.size()] = '\0';
    if (joined.empty() && size >= 2) buffer[1] = '\0';
    return static_cast<uint32_t>(joined.size());
  }
  if (size < 2) {
    buffer[0] = '\0';
    return 0;
  }
  std::memcpy(buffer, joined.data(), size - 2);
  buffer[size - 2] = '\0';
  buffer[size - 1] = '\0';
  return size - 2;
}

// Names are listed each time they occur. An empty name is left out: its
// empty string would read as the end of the list.
void AddName(std::vector<std::string>* names, std::string_view name) {
  if (!name.empty()) names->emplace_back(name);
}

std::vector<std::string> SectionNames(const ProfileText& profile) {
  std::vector<std::string> names;
  for (const ProfileLine& line : profile.lines)
    if (line.kind == ProfileLineKind::kSection) AddName(&names, profile.Name(line));
  return names;
}

std::vector<std::string> KeyNames(const ProfileText& profile, int header) {
  std::vector<std::string> names;
  if (header < 0) return names;
  size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
  for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i)
    if (profile.lines[i].kind == ProfileLineKind::kKey)
      AddName(&names, profile.Name(profile.lines[i]));
  return names;
}

// One pair of enclosing quotes, single or double, comes off a value read.
std::string_view StripQuotes(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front())
    return value.substr(1, value.size() - 2);
  return value;
}

// ---- writing ---------------------------------------------------------------

// The line end of new lines: the file's own (that of its first line), and
// "\r\n" for a file that has none yet, the form the sibling programs write.
std::string LineEnd(const std::string& text) {
  size_t brk = text.find_first_of("\r\n");
  if (brk == std::string::npos || text.compare(brk, 2, "\r\n") == 0) return "\r\n";
  return text.substr(brk, 1);
}

bool HasLineBreak(std::string_view s) { return s.find_first_of("\r\n") != std::string_view::npos; }

// A section or key name, spaces round it off, that reads back as the same
// name once written: not empty, no line break, no other blank at either end
// (the read would take it off the name in the file but not off the name
// asked for), no "]" in a section, no "=" in a key nor ";" or "[" first.
bool IsWritableName(std::string_view name, bool key) {
  if (name.empty() || HasLineBreak(name)) return false;
  const char* blanks = "\t\v\f";
  if (std::strchr(blanks, name.front()) || std::strchr(blanks, name.back())) return false;
  if (!key) return name.find(']') == std::string_view::npos;
  return name.find('=') == std::string_view::npos && name.front() != ';' && name.front() != '[';
}

// Inserts line (with its line end) after the line at index, giving that line
// a line end first if it is the file's last and has none.
std::string InsertAfter(const ProfileText& profile, size_t index, const std::string& line,
                        const std::string& eol) {
  const ProfileLine& at = profile.lines[index];
  std::string out = profile.text.substr(0, at.end);
  if (at.contentEnd == at.end) out += eol;
  out += line;
  out += eol;
  out.append(profile.text, at.end, std::string::npos);
  return out;
}

std::string SetValue(const ProfileText& profile, std::string_view section, std::string_view key,
                     std::string_view value) {
  const std::string eol = LineEnd(profile.text);
  int header = ProfileFindSection(profile, section);
  if (header < 0) {
    std::string out = profile.text;
    if (!profile.lines.empty() && profile.lines.back().contentEnd == profile.lines.back().end)
      out += eol;
    out.append("[").append(section).append("]").append(eol);
    out.append(key).append("=").append(value).append(eol);
    return out;
  }

  int found = ProfileFindKey(profile, static_cast<size_t>(header), key);
  if (found >= 0) {
    const ProfileLine& line = profile.lines[found];
    if (profile.Value(line) == value) return profile.text;
    // The key keeps its spelling in the file; only its value changes.
    std::string out = profile.text.substr(0, line.begin);
    out.append(profile.Name(line)).append("=").append(value);
    out.append(profile.text, line.contentEnd, std::string::npos);
    return out;
  }

  // A new key goes after the section's last key, before any blank lines or
  // comments that lead to the next section.
  size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
  size_t last = static_cast<size_t>(header);
  for (size_t i = last + 1; i < end; ++i)
    if (profile.lines[i].kind == ProfileLineKind::kKey) last = i;
  std::string line(key);
  line.append("=").append(value);
  return InsertAfter(profile, last, line, eol);
}

// The text without the lines whose flag is set.
std::string WithoutLines(const ProfileText& profile, const std::vector<bool>& drop) {
  std::string out;
  out.reserve(profile.text.size());
  for (size_t i = 0; i < profile.lines.size(); ++i)
    if (!drop[i]) out.append(profile.text, profile.lines[i].begin,
                             profile.lines[i].end - profile.lines[i].begin);
  return out;
}

// Removes every occurrence of the key from the section that is read (the first).
std::string DeleteKey(const ProfileText& profile, std::string_view section, std::string_view key) {
  int header = ProfileFindSection(profile, section);
  if (header < 0) return profile.text;
  std::vector<bool> drop(profile.lines.size(), false);
  size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
  for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i) {
    const ProfileLine& line = profile.lines[i];
    if (line.kind == ProfileLineKind::kKey && ProfileNameEqual(profile.Name(line), key))
      drop[i] = true;
  }
  return WithoutLines(profile, drop);
}

// Removes every section of the name, with all its lines, so that no later
// duplicate comes to light in its place.
std::string DeleteSection(const ProfileText& profile, std::string_view section) {
  std::vector<bool> drop(profile.lines.size(), false);
  bool inside = false;
  for (size_t i = 0; i < profile.lines.size(); ++i) {
    const ProfileLine& line = profile.lines[i];
    if (line.kind == ProfileLineKind::kSection)
      inside = ProfileNameEqual(profile.Name(line), section);
    drop[i] = inside;
  }
  return WithoutLines(profile, drop);
}

}  // namespace

uint32_t ProfileGetString(const char* section, const char* key, const char* defaultValue,
                          char* buffer, uint32_t size, const char* path) {
  if (!buffer || size == 0) return 0;
  // Trailing blanks of the default are not part of it.
  std::string_view fallback = defaultValue ? defaultValue : "";
  while (!fallback.empty() && fallback.back() == ' ') fallback.remove_suffix(1);

  ProfileText profile;
  bool exists = false;
  ProfileLoad(path, &profile, &exists);

  if (!section) return CopyList(SectionNames(profile), buffer, size);

  int header = ProfileFindSection(profile, ProfileRequestName(section));
  if (!key) {
    // The key names; a section without any answers the default instead.
    std::vector<std::string> names = KeyNames(profile, header);
    if (names.empty()) {
      uint32_t n = CopyValue(fallback, buffer, size);
      if (n + 1 < size) buffer[n + 1] = '\0';
      return n;
    }
    return CopyList(names, buffer, size);
  }

  if (header >= 0) {
    int line = ProfileFindKey(profile, static_cast<size_t>(header), ProfileRequestName(key));
    if (line >= 0) {
      // The length of a value is kept in 16 bits: a value of 65536
      // characters or more reads as its first (length mod 65536).
      std::string_view value = StripQuotes(profile.Value(profile.lines[line]));
      return CopyValue(value.substr(0, value.size() % 65536u), buffer, size);
    }
  }
  return CopyValue(fallback, buffer, size);
}

uint32_t ProfileGetInt(const char* section, const char* key, int32_t defaultValue,
                       const char* path) {
  if (!section || !key) return static_cast<uint32_t>(defaultValue);
  char text[64];
  // An empty value counts as missing.
  if (ProfileGetString(section, key, "", text, sizeof text, path) == 0)
    return static_cast<uint32_t>(defaultValue);

  const char* p = text;
  while (*p == ' ' || *p == '\t') ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  uint32_t result = 0;  // wraps as the system's conversion does
  if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
    for (p += 2;; ++p) {
      int digit;
      if (*p >= '0' && *p <= '9') digit = *p - '0';
      else if (*p >= 'a' && *p <= 'f') digit = *p - 'a' + 10;
      else if (*p >= 'A' && *p <= 'F') digit = *p - 'A' + 10;
      else break;
      result = result * 16u + static_cast<uint32_t>(digit);
    }
  } else {
    for (; *p >= '0' && *p <= '9'; ++p) result = result * 10u + static_cast<uint32_t>(*p - '0');
  }
  return negative ? 0u - result : result;
}

uint32_t ProfileGetSection(const char* section, char* buffer, uint32_t size, const char* path) {
  if (!buffer || size == 0) return 0;
  std::vector<std::string> lines;
  if (section) {
    ProfileText profile;
    bool exists = false;
    ProfileLoad(path, &profile, &exists);
    int header = ProfileFindSection(profile, ProfileRequestName(section));
    if (header >= 0) {
      size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
      for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i) {
        const ProfileLine& line = profile.lines[i];
        if (line.kind != ProfileLineKind::kKey && line.kind != ProfileLineKind::kText) continue;
        std::string entry(profile.Name(line));
        if (line.kind == ProfileLineKind::kKey) entry.append("=").append(profile.Value(line));
        lines.push_back(std::move(entry));
      }
    }
  }
  return CopyList(lines, buffer, size);
}

bool ProfileWriteString(const char* section, const char* key, const char* value,
                        const char* path) {
  // Every write is on disk when it returns: the flush has nothing left to do.
  if (!section && !key && !value) return true;
  if (!section || !path || !path[0]) return false;
  // Names are written without the spaces round them, as they are read.
  std::string_view sectionName = ProfileRequestName(section);
  std::string_view keyName = key ? ProfileRequestName(key) : std::string_view();
  if (!IsWritableName(sectionName, false) || (key && !IsWritableName(keyName, true)))
    return false;
  if (key && value && HasLineBreak(value)) return false;

  ProfileText profile;
  bool exists = false;
  if (!ProfileLoad(path, &profile, &exists)) return false;

  std::string updated;
  if (!key) {
    updated = DeleteSection(profile, sectionName);
  } else if (!value) {
    updated = DeleteKey(profile, sectionName, keyName);
  } else {
    updated = SetValue(profile, sectionName, keyName, value);
  }
  if (exists && updated == profile.text) return true;
  if (!exists && updated.empty()) return true;  // nothing to remove from no file
  // A UTF-16 file stays UTF-16; every line not changed keeps its bytes.
  std::string bytes = ProfileFileBytes(profile, updated);
  return WriteFileAtomic(path, bytes.data(), bytes.size());
}

}  // namespace fancy
