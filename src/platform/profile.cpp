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
// that does not fit is cut to size - 2 characters, its last string cut short,
// and closed by two zeros; the count then is size - 2.
uint32_t CopyList(const std::vector<std::string>& items, char* buffer, uint32_t size) {
  std::string joined;
  for (const std::string& item : items) {
    joined += item;
    joined += '\0';
  }
  if (joined.size() + 1 <= size) {
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

void AddDistinct(std::vector<std::string>* names, std::string_view name) {
  if (name.empty()) return;
  for (const std::string& known : *names)
    if (ProfileNameEqual(known, name)) return;
  names->emplace_back(name);
}

std::vector<std::string> SectionNames(const ProfileText& profile) {
  std::vector<std::string> names;
  for (const ProfileLine& line : profile.lines)
    if (line.kind == ProfileLineKind::kSection) AddDistinct(&names, profile.Name(line));
  return names;
}

std::vector<std::string> KeyNames(const ProfileText& profile, int header) {
  std::vector<std::string> names;
  if (header < 0) return names;
  size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
  for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i)
    if (profile.lines[i].kind == ProfileLineKind::kKey)
      AddDistinct(&names, profile.Name(profile.lines[i]));
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
  size_t newline = text.find('\n');
  if (newline != std::string::npos && (newline == 0 || text[newline - 1] != '\r')) return "\n";
  return "\r\n";
}

bool HasLineBreak(const char* s) { return std::strpbrk(s, "\r\n") != nullptr; }

// A key name that reads back as the same key once written.
bool IsWritableKey(const char* key) {
  std::string_view k(key);
  size_t s = k.find_first_not_of(" \t");
  if (s == std::string_view::npos) return false;
  return !HasLineBreak(key) && k.find('=') == std::string_view::npos && k[s] != ';' &&
         k[s] != '[';
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
    if (!out.empty() && out.back() != '\n') out += eol;
    out.append("[").append(section).append("]").append(eol);
    out.append(key).append("=").append(value).append(eol);
    return out;
  }

  int found = ProfileFindKey(profile, static_cast<size_t>(header), key);
  if (found >= 0) {
    const ProfileLine& line = profile.lines[found];
    if (line.hasValue && profile.Value(line) == value) return profile.text;
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

  int header = ProfileFindSection(profile, section);
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
    int line = ProfileFindKey(profile, static_cast<size_t>(header), key);
    if (line >= 0 && profile.lines[line].hasValue)
      return CopyValue(StripQuotes(profile.Value(profile.lines[line])), buffer, size);
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
    int header = ProfileFindSection(profile, section);
    if (header >= 0) {
      size_t end = ProfileSectionEnd(profile, static_cast<size_t>(header));
      for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i) {
        const ProfileLine& line = profile.lines[i];
        if (line.kind != ProfileLineKind::kKey || line.nameBegin == line.nameEnd) continue;
        std::string entry(profile.Name(line));
        if (line.hasValue) entry.append("=").append(profile.Value(line));
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
  if (!section || !section[0] || HasLineBreak(section) || !path || !path[0]) return false;
  if (key && !IsWritableKey(key)) return false;
  if (key && value && HasLineBreak(value)) return false;

  ProfileText profile;
  bool exists = false;
  if (!ProfileLoad(path, &profile, &exists)) return false;

  std::string updated;
  if (!key) {
    updated = DeleteSection(profile, section);
  } else if (!value) {
    updated = DeleteKey(profile, section, key);
  } else {
    updated = SetValue(profile, section, key, value);
  }
  if (exists && updated == profile.text) return true;
  if (!exists && updated.empty()) return true;  // nothing to remove from no file
  return WriteFileAtomic(path, updated.data(), updated.size());
}

}  // namespace fancy
