#include "platform/profile_text.h"

#include <cstdint>
#include <utility>

#include "platform/file.h"
#include "platform/utf16.h"

namespace fancy {

namespace {

// Profile files are small; anything larger is not one and is refused.
constexpr size_t kMaxProfileBytes = 16u << 20;

// The blanks taken off round names, values and lines.
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

void TrimBlanks(const std::string& text, size_t* s, size_t* e) {
  while (*s < *e && IsBlank(text[*s])) ++*s;
  while (*e > *s && IsBlank(text[*e - 1])) --*e;
}

// Classifies the line [s, e) of text, whose blanks round it are already off.
// Searches stay within the line, so that a file of long lines is not
// searched to its end once per line.
void ClassifyLine(const std::string& text, size_t s, size_t e, ProfileLine* line) {
  line->kind = ProfileLineKind::kBlank;
  line->nameBegin = line->nameEnd = s;
  line->valueBegin = line->valueEnd = e;
  if (s == e) return;
  std::string_view within = std::string_view(text).substr(0, e);

  if (text[s] == ';') {
    line->kind = ProfileLineKind::kComment;
  } else if (text[s] == '[') {
    // The name runs to the first "]", or to the line's end when there is
    // none; whatever follows the "]" is ignored.
    size_t close = within.find(']', s + 1);
    line->kind = ProfileLineKind::kSection;
    line->nameBegin = s + 1;
    line->nameEnd = close == std::string_view::npos ? e : close;
    TrimBlanks(text, &line->nameBegin, &line->nameEnd);
  } else if (size_t equals = within.find('=', s); equals != std::string_view::npos) {
    line->kind = ProfileLineKind::kKey;
    line->nameEnd = equals;
    TrimBlanks(text, &line->nameBegin, &line->nameEnd);
    line->valueBegin = equals + 1;
    TrimBlanks(text, &line->valueBegin, &line->valueEnd);
  } else {
    line->kind = ProfileLineKind::kText;
    line->nameEnd = e;
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
  out->wide = false;
  out->wideTail.clear();
  const std::string& t = out->text;
  size_t pos = 0;
  while (pos < t.size()) {
    // "\r\n", "\n" and a lone "\r" each end a line.
    ProfileLine line;
    line.begin = pos;
    size_t brk = t.find_first_of("\r\n", pos);
    if (brk == std::string::npos) {
      line.contentEnd = line.end = t.size();
    } else {
      line.contentEnd = brk;
      line.end = brk + (t.compare(brk, 2, "\r\n") == 0 ? 2 : 1);
    }
    size_t s = pos, e = line.contentEnd;
    TrimBlanks(t, &s, &e);
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
  std::string text(bytes.begin(), bytes.end());
  if (text.compare(0, 2, "\xFF\xFE") != 0) {
    ProfileParse(std::move(text), out);
    return true;
  }
  size_t units = (text.size() - 2) / 2;
  ProfileParse(Utf16LeToUtf8(std::string_view(text).substr(2, units * 2)), out);
  out->wide = true;
  out->wideTail = text.substr(2 + units * 2);
  return true;
}

std::string ProfileFileBytes(const ProfileText& profile, const std::string& text) {
  if (!profile.wide) return text;
  return "\xFF\xFE" + Utf8ToUtf16Le(text) + profile.wideTail;
}

std::string_view ProfileRequestName(const char* name) {
  std::string_view n(name);
  size_t first = n.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return n.substr(first, n.find_last_not_of(' ') + 1 - first);
}

int ProfileFindSection(const ProfileText& profile, std::string_view name) {
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
  int header = ProfileFindSection(profile, ProfileRequestName(section));
  if (header < 0) return false;
  int line = ProfileFindKey(profile, static_cast<size_t>(header), ProfileRequestName(key));
  if (line < 0) return false;
  *value = profile.Value(profile.lines[line]);
  return true;
}

}  // namespace fancy
