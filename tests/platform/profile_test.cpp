#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/crt_random.h"
#include "platform/profile.h"
#include "support/temp_dir.h"

namespace fancy {
namespace {

using testing::TempDir;

std::string Get(const char* section, const char* key, const char* def, const std::string& path,
                uint32_t size = 256, uint32_t* count = nullptr) {
  std::vector<char> buffer(size + 1, '#');
  uint32_t n = ProfileGetString(section, key, def, buffer.data(), size, path.c_str());
  if (count) *count = n;
  return std::string(buffer.data());
}

// A zero-terminated list ended by a second zero, as its strings; checks that
// the list really is closed within size.
std::vector<std::string> List(const char* buffer, uint32_t size) {
  std::vector<std::string> out;
  uint32_t i = 0;
  while (i < size && buffer[i]) {
    size_t n = strnlen(buffer + i, size - i);
    EXPECT_LT(i + n, size) << "string not terminated within the buffer";
    out.emplace_back(buffer + i, n);
    i += static_cast<uint32_t>(n) + 1;
  }
  EXPECT_LT(i, size) << "list not closed by a second zero";
  return out;
}

std::vector<std::string> GetList(const char* section, const std::string& path, uint32_t size,
                                 uint32_t* count = nullptr) {
  std::vector<char> buffer(size, '#');
  uint32_t n = ProfileGetString(section, nullptr, "", buffer.data(), size, path.c_str());
  if (count) *count = n;
  return List(buffer.data(), size);
}

const char kSample[] =
    "; a comment before any section\n"
    "Orphan=before any section\n"
    "[Styles]\n"
    "  BrushName  =  Round Soft  \n"
    "Quoted=\"  kept blanks  \"\n"
    "Single='one'\n"
    "HalfQuote=\"open\n"
    "Mixed=\"a'\n"
    "Empty=\n"
    "EmptyQuotes=\"\"\n"
    "NoEquals\n"
    "; Hidden=comment\n"
    "Inner Blank = x = y\n"
    "Dup=first\n"
    "Dup=second\n"
    "[styles]\n"
    "Dup=other section\n"
    "Late=only in the duplicate\n"
    "[Numbers]\n"
    "Ten=10\n"
    "Neg= -42\n"
    "Hex=0x1F\n"
    "HexUpper=0XfF\n"
    "Trail=12abc\n"
    "Word=abc\n"
    "Plus=+7\n"
    "Blank=\n"
    "QuotedNum=\"33\"\n"
    "Wrap=4294967297\n";

TEST(Profile, ReadsValuesLikeTheSystemCalls) {
  TempDir dir;
  std::string path = dir.Write("a.ini", kSample);

  // Names compare without case; blanks round names and values go.
  EXPECT_EQ(Get("STYLES", "brushname", "d", path), "Round Soft");
  EXPECT_EQ(Get("Styles", "Inner Blank", "d", path), "x = y");
  // One pair of enclosing quotes, either kind, comes off; the blanks inside stay.
  EXPECT_EQ(Get("Styles", "Quoted", "d", path), "  kept blanks  ");
  EXPECT_EQ(Get("Styles", "Single", "d", path), "one");
  EXPECT_EQ(Get("Styles", "HalfQuote", "d", path), "\"open");
  EXPECT_EQ(Get("Styles", "Mixed", "d", path), "\"a'");
  EXPECT_EQ(Get("Styles", "EmptyQuotes", "d", path), "");
  // An empty value is a value, not a missing key.
  EXPECT_EQ(Get("Styles", "Empty", "d", path), "");
  // A line without "=" and a commented key read as missing.
  EXPECT_EQ(Get("Styles", "NoEquals", "d", path), "d");
  EXPECT_EQ(Get("Styles", "Hidden", "d", path), "d");
  EXPECT_EQ(Get("Styles", "; Hidden", "d", path), "d");
  // The first of duplicate keys and sections is the one read.
  EXPECT_EQ(Get("Styles", "Dup", "d", path), "first");
  EXPECT_EQ(Get("Styles", "Late", "d", path), "d");
  // Lines before the first section belong to none.
  EXPECT_EQ(Get("", "Orphan", "d", path), "d");
  // Missing section, key, empty key name; null default; trailing blanks of
  // the default are not part of it, leading ones are.
  EXPECT_EQ(Get("Nope", "BrushName", "def", path), "def");
  EXPECT_EQ(Get("Styles", "Nope", nullptr, path), "");
  EXPECT_EQ(Get("Styles", "", "d", path), "d");
  EXPECT_EQ(Get("Styles", "Nope", " def  ", path), " def");
  // A missing file, a null and an empty path read as empty profiles.
  EXPECT_EQ(Get("Styles", "BrushName", "gone", dir.File("missing.ini")), "gone");
  char buffer[8] = "x";
  EXPECT_EQ(ProfileGetString("Styles", "BrushName", "d", buffer, 8, nullptr), 1u);
  EXPECT_STREQ(buffer, "d");
}

// Small files, each with the answer the Windows calls give.
TEST(Profile, ReadsSmallFilesAsWindowsDoes) {
  using namespace std::string_literals;
  struct Case {
    std::string text;
    const char *section, *key, *expected;
  } cases[] = {
      {"[A]\r\nKey=value\r\nNext = two \r\n", "A", "Next", "two"},
      {"[A]\nKey=last", "A", "Key", "last"},
      {"[A]\nKey=a\0b\n"s, "A", "Key", "a"},
      // Spaces round the names asked for go; other blanks stay.
      {"[s]\nk=v\n", "  s ", " k  ", "v"},
      {"[s]\nk=v\n", "s", "\tk", "d"},
      // Blanks inside a header, an unclosed header, a "]" in the name.
      {"[ s\t]\nk=v\n", "S", "k", "v"},
      {"[s  \nk=v\n", "s", "k", "v"},
      {"[a]b]\nk=v\n", "a", "k", "v"},
      {"[a]b]\nk=v\n", "a]b", "k", "d"},
      {"[s]k=v\n", "s", "k", "d"},
      {"[]\nk=v\n", "", "k", "v"},
      {"[s]\n=v\n", "s", "", "v"},
      // A line without "=" is no key.
      {"[s]\nk\nk=v\n", "s", "k", "v"},
      // A lone carriage return ends a line.
      {"[s]\rk=v\rj=w\n\rx=y", "s", "j", "w"},
      {"[s]\rk=v\rj=w\n\rx=y", "s", "x", "y"},
      // The UTF-8 mark is part of the first line; UTF-16LE is read, BE not.
      {"\xEF\xBB\xBF[s]\nk=v\n", "s", "k", "d"},
      {"\xEF\xBB\xBF\n[s]\nk=v\n", "s", "k", "v"},
      {"\xFF\xFE[\0s\0]\0\r\0k\0=\0\xE9\0\x3D\xD8\x00\xDE"s, "s", "k", "\xC3\xA9\xF0\x9F\x98\x80"},
      {"\xFE\xFF\0[\0s\0]\0\n\0k\0=\0v\0\n"s, "s", "k", "d"},
  };
  TempDir dir;
  for (const Case& c : cases)
    EXPECT_EQ(Get(c.section, c.key, "d", dir.Write("c.ini", c.text)), c.expected) << c.text;

  // A value's length is kept in 16 bits.
  std::string path = dir.Write("long.ini", "[s]\nk=" + std::string(65537, 'x') + "\n");
  EXPECT_EQ(Get("s", "k", "", path), "x");
  dir.Write("long.ini", "[s]\nk=" + std::string(65535, 'x') + "\n");
  EXPECT_EQ(Get("s", "k", "", path, 70000).size(), 65535u);
}

TEST(Profile, ReadsIntegers) {
  TempDir dir;
  std::string path = dir.Write("a.ini", kSample);
  auto Int = [&](const char* key, int32_t def = 99) {
    return static_cast<int32_t>(ProfileGetInt("Numbers", key, def, path.c_str()));
  };
  EXPECT_EQ(Int("Ten"), 10);
  EXPECT_EQ(Int("Neg"), -42);
  EXPECT_EQ(Int("Hex"), 31);
  EXPECT_EQ(Int("HexUpper"), 255);
  EXPECT_EQ(Int("Trail"), 12);
  EXPECT_EQ(Int("Word"), 0);
  EXPECT_EQ(Int("Plus"), 7);
  EXPECT_EQ(Int("QuotedNum"), 33);
  EXPECT_EQ(ProfileGetInt("Numbers", "Wrap", 0, path.c_str()), 1u);
  EXPECT_EQ(Int("Blank"), 99);
  EXPECT_EQ(Int("Missing", -5), -5);
  EXPECT_EQ(static_cast<int32_t>(ProfileGetInt("Numbers", "Ten", 3, dir.File("no.ini").c_str())),
            3);
}

TEST(Profile, CutsValuesToTheBuffer) {
  TempDir dir;
  std::string path = dir.Write("a.ini", "[S]\nKey=abcdef\n");
  uint32_t n = 0;
  EXPECT_EQ(Get("S", "Key", "", path, 7, &n), "abcdef");
  EXPECT_EQ(n, 6u);
  EXPECT_EQ(Get("S", "Key", "", path, 6, &n), "abcde");
  EXPECT_EQ(n, 5u);
  EXPECT_EQ(Get("S", "Key", "", path, 1, &n), "");
  EXPECT_EQ(n, 0u);
  // The default is cut the same way.
  EXPECT_EQ(Get("S", "Missing", "0123456789", path, 4, &n), "012");
  EXPECT_EQ(n, 3u);
  // A zero size or a null buffer writes nothing.
  char untouched[2] = {'z', 'z'};
  EXPECT_EQ(ProfileGetString("S", "Key", "", untouched, 0, path.c_str()), 0u);
  EXPECT_EQ(untouched[0], 'z');
  EXPECT_EQ(ProfileGetString("S", "Key", "", nullptr, 10, path.c_str()), 0u);
}

TEST(Profile, ListsSectionsKeysAndLinesWithTheirLimits) {
  TempDir dir;
  std::string path = dir.Write("a.ini", kSample);
  uint32_t n = 0;

  // Section names in file order, each time they occur.
  EXPECT_EQ(GetList(nullptr, path, 24, &n),
            (std::vector<std::string>{"Styles", "styles", "Numbers"}));
  EXPECT_EQ(n, 22u);

  // Key names of the first section: comments and a line without "=" left
  // out, duplicates each time.
  EXPECT_EQ(GetList("styles", path, 512),
            (std::vector<std::string>{"BrushName", "Quoted", "Single", "HalfQuote", "Mixed",
                                      "Empty", "EmptyQuotes", "Inner Blank", "Dup", "Dup"}));

  // An exact fit (23 bytes with the final zero) counts as cut: size - 2,
  // though the names are whole. One byte short cuts the last name.
  std::vector<char> buffer(23, '#');
  n = ProfileGetString(nullptr, nullptr, "", buffer.data(), 23, path.c_str());
  EXPECT_EQ(n, 21u);
  EXPECT_EQ(std::string(buffer.data(), 23), std::string("Styles\0styles\0Numbers\0\0", 23));
  n = ProfileGetString(nullptr, nullptr, "", buffer.data(), 22, path.c_str());
  EXPECT_EQ(std::string(buffer.data(), 22), std::string("Styles\0styles\0Number\0\0", 22));
  // Size 2 holds only the two zeros; size 1 a single zero.
  n = ProfileGetString(nullptr, nullptr, "", buffer.data(), 2, path.c_str());
  EXPECT_EQ(n, 0u);
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(buffer[1], '\0');
  EXPECT_EQ(ProfileGetString(nullptr, nullptr, "", buffer.data(), 1, path.c_str()), 0u);

  // An empty profile gives an empty list; a section without keys answers
  // the default.
  EXPECT_TRUE(GetList(nullptr, dir.File("none.ini"), 8, &n).empty());
  EXPECT_EQ(n, 0u);
  EXPECT_EQ(Get("Missing", nullptr, "dflt", path), "dflt");

  // The section's lines: names and values without blanks round them, quotes
  // kept, comments out, duplicates as they stand.
  std::vector<char> lines(1024, '#');
  n = ProfileGetSection("STYLES", lines.data(), 1024, path.c_str());
  std::vector<std::string> got = List(lines.data(), 1024);
  EXPECT_EQ(got, (std::vector<std::string>{
                     "BrushName=Round Soft", "Quoted=\"  kept blanks  \"", "Single='one'",
                     "HalfQuote=\"open", "Mixed=\"a'", "Empty=", "EmptyQuotes=\"\"", "NoEquals",
                     "Inner Blank=x = y", "Dup=first", "Dup=second"}));
  size_t total = 0;
  for (const std::string& line : got) total += line.size() + 1;
  EXPECT_EQ(n, total);
  // Cut inside the first line.
  n = ProfileGetSection("Styles", lines.data(), 8, path.c_str());
  EXPECT_EQ(n, 6u);
  EXPECT_EQ(std::string(lines.data(), 8), std::string("BrushN\0\0", 8));
}

TEST(Profile, WritesCreateFileSectionAndKey) {
  TempDir dir;
  std::string path = dir.File("new.ini");
  ASSERT_TRUE(ProfileWriteString("Config", "DataDir", "data", path.c_str()));
  // A new file takes the Windows line end.
  EXPECT_EQ(TempDir::Read(path), "[Config]\r\nDataDir=data\r\n");

  ASSERT_TRUE(ProfileWriteString("Config", "ColorDir", "color", path.c_str()));
  ASSERT_TRUE(ProfileWriteString("Debug", "3DLook", "0", path.c_str()));
  ASSERT_TRUE(ProfileWriteString("CONFIG", "datadir", "other", path.c_str()));
  EXPECT_EQ(TempDir::Read(path),
            "[Config]\r\nDataDir=other\r\nColorDir=color\r\n[Debug]\r\n3DLook=0\r\n");
  EXPECT_EQ(Get("config", "DATADIR", "", path), "other");

  // An empty value is written as one.
  ASSERT_TRUE(ProfileWriteString("Debug", "Empty", "", path.c_str()));
  EXPECT_EQ(Get("Debug", "Empty", "d", path), "");

  // A folder that does not exist cannot take the file.
  EXPECT_FALSE(ProfileWriteString("S", "K", "V", dir.File("no/such/dir.ini").c_str()));
}

TEST(Profile, RewritesKeepTheRestOfTheFile) {
  TempDir dir;
  const std::string original =
      "; settings\n"
      "[Alpha]\n"
      "  One = 1   ; not a comment, part of the value\n"
      "Two=2\n"
      "\n"
      "; about Beta\n"
      "[Beta]\n"
      "X=1\n"
      "[alpha]\n"
      "One=shadowed\n";
  std::string path = dir.Write("a.ini", original);

  // A changed value touches only its line, and the first of duplicates.
  ASSERT_TRUE(ProfileWriteString("ALPHA", "one", "uno", path.c_str()));
  std::string expected = original;
  expected.replace(expected.find("  One = 1   ; not a comment, part of the value"),
                   std::strlen("  One = 1   ; not a comment, part of the value"), "One=uno");
  EXPECT_EQ(TempDir::Read(path), expected);

  // A new key joins its section after the last key, before the blank line
  // and the comment that lead to the next section.
  ASSERT_TRUE(ProfileWriteString("Alpha", "Three", "3", path.c_str()));
  expected.insert(expected.find("Two=2\n") + 6, "Three=3\n");
  EXPECT_EQ(TempDir::Read(path), expected);

  // Writing the value already there changes nothing.
  ASSERT_TRUE(ProfileWriteString("Alpha", "Two", "2", path.c_str()));
  EXPECT_EQ(TempDir::Read(path), expected);
}

TEST(Profile, RemovesKeysAndSections) {
  TempDir dir;
  std::string path = dir.Write("a.ini",
                               "[A]\nK=1\nk=2\nL=3\n[B]\n; b's comment\nM=4\n[a]\nK=5\nN=6\n");
  // Removing a key removes every copy of it in the section that is read, so
  // that no duplicate comes to light; the other section of the name keeps its own.
  ASSERT_TRUE(ProfileWriteString("A", "K", nullptr, path.c_str()));
  EXPECT_EQ(Get("A", "K", "gone", path), "gone");
  EXPECT_EQ(Get("A", "L", "", path), "3");
  EXPECT_EQ(TempDir::Read(path), "[A]\nL=3\n[B]\n; b's comment\nM=4\n[a]\nK=5\nN=6\n");

  // Removing a section removes every section of the name with its lines.
  ASSERT_TRUE(ProfileWriteString("a", nullptr, nullptr, path.c_str()));
  EXPECT_EQ(TempDir::Read(path), "[B]\n; b's comment\nM=4\n");
  EXPECT_EQ(Get("A", "N", "gone", path), "gone");

  // Removing what is not there succeeds and creates no file.
  ASSERT_TRUE(ProfileWriteString("Z", "K", nullptr, path.c_str()));
  ASSERT_TRUE(ProfileWriteString("Z", nullptr, nullptr, path.c_str()));
  EXPECT_EQ(TempDir::Read(path), "[B]\n; b's comment\nM=4\n");
  std::string missing = dir.File("missing.ini");
  ASSERT_TRUE(ProfileWriteString("Z", "K", nullptr, missing.c_str()));
  ASSERT_TRUE(ProfileWriteString("Z", nullptr, nullptr, missing.c_str()));
  EXPECT_TRUE(TempDir::Read(missing).empty());

  // All three null is the flush; a null section with anything else fails.
  EXPECT_TRUE(ProfileWriteString(nullptr, nullptr, nullptr, path.c_str()));
  EXPECT_FALSE(ProfileWriteString(nullptr, "K", "V", path.c_str()));
  EXPECT_FALSE(ProfileWriteString(nullptr, "K", nullptr, path.c_str()));
}

TEST(Profile, KeepsTheFilesLineEnds) {
  TempDir dir;
  // A file without a final line end gets one before a line is added after it.
  std::string lf = dir.Write("lf.ini", "[A]\nK=1");
  ASSERT_TRUE(ProfileWriteString("A", "L", "2", lf.c_str()));
  EXPECT_EQ(TempDir::Read(lf), "[A]\nK=1\nL=2\n");
  ASSERT_TRUE(ProfileWriteString("B", "M", "3", lf.c_str()));
  EXPECT_EQ(TempDir::Read(lf), "[A]\nK=1\nL=2\n[B]\nM=3\n");

  std::string crlf = dir.Write("crlf.ini", "[A]\r\nK=1\r\n[C]\r\nZ=0");
  ASSERT_TRUE(ProfileWriteString("A", "K", "one", crlf.c_str()));
  ASSERT_TRUE(ProfileWriteString("A", "L", "2", crlf.c_str()));
  ASSERT_TRUE(ProfileWriteString("C", "Y", "9", crlf.c_str()));
  EXPECT_EQ(TempDir::Read(crlf), "[A]\r\nK=one\r\nL=2\r\n[C]\r\nZ=0\r\nY=9\r\n");

  // Spaces round names go; a lone "\r" is the file's line end.
  std::string cr = dir.Write("cr.ini", "[A]\rK=1");
  ASSERT_TRUE(ProfileWriteString(" A ", " L ", "2", cr.c_str()));
  ASSERT_TRUE(ProfileWriteString("B", "M", "3", cr.c_str()));
  EXPECT_EQ(TempDir::Read(cr), "[A]\rK=1\rL=2\r[B]\rM=3\r");

  std::string headerOnly = dir.Write("h.ini", "[A]");
  ASSERT_TRUE(ProfileWriteString("A", "K", "v", headerOnly.c_str()));
  EXPECT_EQ(Get("A", "K", "", headerOnly), "v");
}

TEST(Profile, RefusesWritesThatWouldNotReadBack) {
  TempDir dir;
  const std::string original = "[A]\nK=1\n";
  std::string path = dir.Write("a.ini", original);
  EXPECT_FALSE(ProfileWriteString("A", "K", "two\nlines", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", "K", "cr\r", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", "K=J", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", "", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", ";K", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("", "K", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A\nB", "K", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A]B", "K", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", "\tK", "v", path.c_str()));
  EXPECT_FALSE(ProfileWriteString("A", "K", "v", ""));
  EXPECT_EQ(TempDir::Read(path), original);

  // What may be written comes back as written (blanks round a value aside).
  const char* values[] = {"a=b", "[x]", ";not a comment", "\"quoted\"", "tab\there"};
  for (const char* value : values) {
    ASSERT_TRUE(ProfileWriteString("A", "V", value, path.c_str()));
    std::string expected = value;
    if (expected.front() == '"') expected = expected.substr(1, expected.size() - 2);
    EXPECT_EQ(Get("A", "V", "", path), expected);
  }
}

TEST(Profile, WritesKeepLinesThatAreNoKeysAndTheFilesEncoding) {
  using namespace std::string_literals;
  TempDir dir;
  // "k" without "=" is no key: a write adds one, a removal leaves the line.
  std::string path = dir.Write("a.ini", "[s]\nk\n[t]\n");
  ASSERT_TRUE(ProfileWriteString("s", "k", "v", path.c_str()));
  EXPECT_EQ(TempDir::Read(path), "[s]\nk=v\nk\n[t]\n");
  ASSERT_TRUE(ProfileWriteString("s", "k", nullptr, path.c_str()));
  EXPECT_EQ(TempDir::Read(path), "[s]\nk\n[t]\n");

  // A UTF-16 file stays UTF-16 with every other unit as it was: a lone
  // surrogate, a last odd byte. A byte that is no UTF-8 is written as U+FFFD.
  const std::string wide = "\xFF\xFE[\0s\0]\0\n\0x\0=\0\0\xD8\n\0"s;
  path = dir.Write("w.ini", wide + "\x7F");
  ASSERT_TRUE(ProfileWriteString("s", "k", "\xC3\xA9", path.c_str()));
  EXPECT_EQ(TempDir::Read(path), wide + "k\0=\0\xE9\0\n\0\x7F"s);
  ASSERT_TRUE(ProfileWriteString("s", "k", "\xFF", path.c_str()));
  EXPECT_EQ(Get("s", "k", "", path), "\xEF\xBF\xBD");
}

// Files put together from the pieces that matter to the format (brackets,
// "=", ";", quotes, blanks, both line ends, a missing last line end): each
// write changes exactly what it names, and every other value reads as before.
TEST(Profile, WritesChangeOnlyWhatTheyName) {
  TempDir dir;
  const char* pieces[] = {"[A]", "[b]", "[ A ]", "[Sec]x", "[", "]", "K", "k2", "Name", "=",
                          "= v", "\"q\"", "'", ";", " ", "\t", "\r", "x y", "[a]", "[b]]", "[ Sec"};
  const char* sections[] = {"A", " b ", "Sec", "New"};
  const char* keys[] = {"K", "k2", "Name", "Fresh"};
  const char* values[] = {"1", "two words", "", "a=b", "[z]"};
  std::string path = dir.File("p.ini");
  CrtSrand(2024);
  for (int round = 0; round < 150; ++round) {
    std::string text;
    int lines = CrtRand() % 12;
    for (int l = 0; l < lines; ++l) {
      int parts = 1 + CrtRand() % 4;
      for (int p = 0; p < parts; ++p) text += pieces[CrtRand() % std::size(pieces)];
      if (l + 1 < lines || CrtRand() % 2) text += CrtRand() % 2 ? "\r\n" : "\n";
    }
    dir.Write("p.ini", text);

    // Everything readable before, by section name and key name.
    auto Snapshot = [&] {
      std::vector<std::string> snapshot;
      for (const char* sec : sections)
        for (const char* key : keys) snapshot.push_back(Get(sec, key, "<none>", path));
      return snapshot;
    };
    std::vector<std::string> before = Snapshot();

    int sectionIndex = CrtRand() % 4, keyIndex = CrtRand() % 4;
    int action = CrtRand() % 5;  // 0..2 set, 3 remove the key, 4 remove the section
    const char* value = values[CrtRand() % std::size(values)];
    const char* key = action == 4 ? nullptr : keys[keyIndex];
    ASSERT_TRUE(ProfileWriteString(sections[sectionIndex], key, action == 3 ? nullptr : value,
                                   path.c_str()))
        << text;

    std::vector<std::string> after = Snapshot();
    for (int si = 0; si < 4; ++si)
      for (int ki = 0; ki < 4; ++ki) {
        std::string expected = before[si * 4 + ki];
        if (si == sectionIndex && (action == 4 || ki == keyIndex))
          expected = action < 3 ? value : "<none>";
        EXPECT_EQ(after[si * 4 + ki], expected)
            << "round " << round << ", [" << sections[si] << "] " << keys[ki] << ", file:\n"
            << text << "\nnow:\n" << TempDir::Read(path);
      }
  }
}

}  // namespace
}  // namespace fancy
