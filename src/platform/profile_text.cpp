#include "platform/profile_text.h"

#include <cstdint>
#include <utility>

#include "platform/file.h"

namespace fancy {

namespace {

// Profile files are small; anything larger is not one and is refused.
constexpr size_t kMaxProfileBytes = 16u << 20;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Classifies the line [s, e) of text, whose blanks round it are already off.
void ClassifyLine(const std::string& text, size_t s, size_t e, ProfileLine* line) {
  line->kind = ProfileLineKind::kBlank;
  line->nameBegin = line->nameEnd = s;
  line->hasValue = false;
  line->valueBegin = line->valueEnd = e;
  if (s == e) return;

  if (text[s] == ';') {
    line->kind = ProfileLineKind::kComment;
    return;
  }
  if (text[s] == '[') {
    // The name runs to the last "]"; whatever follows it is ignored. A "["
    // with no "]" is an ordinary line.
    size_t close = std::string_view(text).substr(s + 1, e - s - 1).rfind(']');
    if (close != std::string::npos) {
      close += s + 1;
      line->kind = ProfileLineKind::kSection;
      line->nameBegin = s + 1;
      line->nameEnd = close;
      return;
    }
  }

  line->kind = ProfileLineKind::kKey;
  // Searches stay within the line, so that a file of long lines without "="
  // is not searched to its end once per line.
  size_t equals = std::string_view(text).substr(0, e).find('=', s);
  size_t nameEnd = equals < e ? equals : e;
  while (nameEnd > s && IsBlank(text[nameEnd - 1])) --nameEnd;
  line->nameBegin = s;
  line->nameEnd = nameEnd;
  if (equals < e) {
    size_t v = equals + 1;
    while (v < e && IsBlank(text[v])) ++v;
    line->hasValue = true;
    line->valueBegin = v;
    line->valueEnd = e;
  }
}

}  // namespace

bool ProfileNameEqual(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
  return true;
}

void ProfileParse(std::string text, ProfileText* out) {
  out->text = std::move(text);
  out->lines.clear();
  const std::string& t = out->text;
  size_t pos = 0;
  size_t contentStart = 0;
  if (t.size() >= 3 && static_cast<uint8_t>(t[0]) == 0xEF && static_cast<uint8_t>(t[1]) == 0xBB &&
      static_cast<uint8_t>(t[2]) == 0xBF)
    contentStart = 3;
  while (pos < t.size()) {
    ProfileLine line;
    line.begin = pos;
    size_t newline = t.find('\n', pos);
    line.end = newline == std::string::npos ? t.size() : newline + 1;
    line.contentEnd = newline == std::string::npos ? t.size() : newline;
    if (line.contentEnd > pos && t[line.contentEnd - 1] == '\r') --line.contentEnd;

    size_t s = pos > contentStart ? pos : contentStart;
    size_t e = line.contentEnd;
    while (s < e && IsBlank(t[s])) ++s;
    while (e > s && IsBlank(t[e - 1])) --e;
    ClassifyLine(t, s, e, &line);
    out->lines.push_back(line);
    pos = line.end;
  }
}

bool ProfileLoad(const char* path, ProfileText* out, bool* exists) {
  *exists = false;
  ProfileParse(std::string(), out);
  if (!path || !path[0]) return true;
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(path, bytes, kMaxProfileBytes)) {
    // Missing is an empty profile; present but unreadable (or a folder) is
    // an error that a write must not paper over.
    return !FileExists(path) && !DirectoryExists(path);
  }
  *exists = true;
  ProfileParse(std::string(bytes.begin(), bytes.end()), out);
  return true;
}

int ProfileFindSection(const ProfileText& profile, std::string_view name) {
  if (name.empty()) return -1;
  for (size_t i = 0; i < profile.lines.size(); ++i) {
    const ProfileLine& line = profile.lines[i];
    if (line.kind == ProfileLineKind::kSection && ProfileNameEqual(profile.Name(line), name))
      return static_cast<int>(i);
  }
  return -1;
}

size_t ProfileSectionEnd(const ProfileText& profile, size_t header) {
  size_t i = header + 1;
  while (i < profile.lines.size() && profile.lines[i].kind != ProfileLineKind::kSection) ++i;
  return i;
}

int ProfileFindKey(const ProfileText& profile, size_t header, std::string_view key) {
  if (key.empty()) return -1;
  size_t end = ProfileSectionEnd(profile, header);
  for (size_t i = header + 1; i < end; ++i) {
    const ProfileLine& line = profile.lines[i];
    if (line.kind == ProfileLineKind::kKey && ProfileNameEqual(profile.Name(line), key))
      return static_cast<int>(i);
  }
  return -1;
}

bool ProfileLookup(const char* section, const char* key, const char* path, std::string* value) {
  value->clear();
  if (!section || !key) return false;
  ProfileText profile;
  bool exists = false;
  if (!ProfileLoad(path, &profile, &exists) || !exists) return false;
  int header = ProfileFindSection(profile, section);
  if (header < 0) return false;
  int line = ProfileFindKey(profile, static_cast<size_t>(header), key);
  if (line < 0 || !profile.lines[line].hasValue) return false;
  *value = profile.Value(profile.lines[line]);
  return true;
}

}  // namespace fancy
