#include "cli.h"

#include <cerrno>
#include <cstdlib>

#include "frame/result_codes.h"

namespace fancy {

namespace {

bool ParseInt(const std::string& text, long low, long high, int32_t* value) {
  if (text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  long v = std::strtol(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || v < low || v > high) return false;
  *value = int32_t(v);
  return true;
}

// "a,b,c[,d]" into count integers within [low, high].
bool ParseList(const std::string& text, int count, long low, long high, int32_t* values) {
  size_t start = 0;
  for (int i = 0; i < count; ++i) {
    size_t comma = text.find(',', start);
    bool last = i == count - 1;
    if (last != (comma == std::string::npos)) return false;
    std::string piece = text.substr(start, last ? std::string::npos : comma - start);
    if (!ParseInt(piece, low, high, &values[i])) return false;
    start = comma + 1;
  }
  return true;
}

bool ParseColour(const std::string& text, uint8_t colour[3]) {
  int32_t values[3];
  if (!ParseList(text, 3, 0, 255, values)) return false;
  for (int i = 0; i < 3; ++i) colour[i] = uint8_t(values[i]);
  return true;
}

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

bool ParseApply(const std::vector<std::string>& args, size_t i, CommandLine* line,
                std::string* error) {
  ApplyOptions& o = line->apply;
  std::vector<std::string> positional;
  for (; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string* out) {
      if (i + 1 >= args.size()) return Fail(error, a + " needs a value");
      *out = args[++i];
      return true;
    };
    std::string v;
    if (a == "--module") {
      if (!value(&o.modulePath)) return false;
    } else if (a == "--mask") {
      if (!value(&o.maskPath)) return false;
    } else if (a == "--params") {
      if (!value(&o.paramsPath)) return false;
    } else if (a == "--preset") {
      if (!value(&o.preset)) return false;
      if (o.preset.empty()) return Fail(error, "--preset wants the name of a style");
    } else if (a == "--style") {
      if (!value(&o.style)) return false;
      if (o.style.empty()) return Fail(error, "--style wants the name of a saved style");
    } else if (a == "--rect") {
      if (!value(&v)) return false;
      int32_t r[4];
      if (!ParseList(v, 4, 0, kMaxPictureSide, r) || r[0] >= r[2] || r[1] >= r[3])
        return Fail(error, "--rect wants L,T,R,B with L < R and T < B, got \"" + v + "\"");
      o.haveRect = true;
      o.rectLeft = r[0], o.rectTop = r[1], o.rectRight = r[2], o.rectBottom = r[3];
    } else if (a == "--foreground" || a == "--background") {
      if (!value(&v)) return false;
      if (!ParseColour(v, a == "--foreground" ? o.foreground : o.background))
        return Fail(error, a + " wants R,G,B with each 0..255, got \"" + v + "\"");
    } else if (a == "--mode") {
      if (!value(&v)) return false;
      if (!ParseMode(v, &o.mode)) return Fail(error, "--mode wants grey, rgb or cmyk, got \"" + v + "\"");
      o.haveMode = true;
    } else if (a == "--group") {
      if (!value(&v)) return false;
      o.tile.group = ParseTileGroup(v);
      if (!o.tile.group) return Fail(error, "--group wants p1, cm, pm, p2, pg, pgg, pmm, p4, p4g, "
                                            "p4m, cmm, pmg, p3, p3m1, p31m, p6, p6m or 1..17, got \"" + v + "\"");
    } else if (a == "--tile-mode") {
      if (!value(&v)) return false;
      o.tile.mode = ParseTileMode(v);
      if (!o.tile.mode) return Fail(error, "--tile-mode wants normal, darken, lighten, hue, "
                                           "saturation, color, luminosity, multiply, screen or "
                                           "1..9, got \"" + v + "\"");
    } else if (a == "--opacity" || a == "--feather") {
      if (!value(&v)) return false;
      const bool opacity = a == "--opacity";
      if (!ParseInt(v, opacity ? 1 : 0, 100, opacity ? &o.tile.opacity : &o.tile.feather))
        return Fail(error, a + (opacity ? " wants 1..100" : " wants 0..100") + ", got \"" + v + "\"");
    } else if (a == "--source") {
      if (!value(&o.tile.source)) return false;
      if (o.tile.source.empty()) return Fail(error, "--source needs a file");
    } else if (a == "--no-dialog") {
      o.noDialog = true;
    } else if (a == "--trace") {
      o.trace = true;
    } else if (a == "--quiet") {
      o.quiet = true;
    } else if (a.size() > 1 && a[0] == '-') {
      return Fail(error, "unknown option " + a);
    } else {
      positional.push_back(a);
    }
  }
  size_t want = line->command == Command::kApply ? 3 : 1;
  if (positional.size() != want)
    return Fail(error, line->command == Command::kApply ? "apply wants EFFECT INPUT OUTPUT"
                                                        : "about wants EFFECT");
  o.filterId = ParseEffect(positional[0]);
  if (o.filterId == 0)
    return Fail(error, "unknown effect \"" + positional[0] +
                           "\": use brushka, tessaris, glass, knurl or 200..203");
  if (o.tile.Any() && o.filterId != kFilterTessaris)
    return Fail(error, "--group, --tile-mode, --opacity, --feather and --source are for tessaris");
  if (!o.style.empty() && o.filterId != kFilterBrushka)
    return Fail(error, "--style chooses a style of brushka only");
  if (want == 3) {
    o.input = positional[1];
    o.output = positional[2];
  }
  if (!o.preset.empty() && o.filterId != kFilterGlass && o.filterId != kFilterKnurl)
    return Fail(error, "--preset is for glass and knurl, whose dialogs keep a style list");
  if (!o.preset.empty() && o.noDialog)
    return Fail(error, "--preset chooses a style in the dialog, which --no-dialog skips");
  return true;
}

}  // namespace

int32_t ParseEffect(const std::string& text) {
  if (text == "brushka" || text == "200") return kFilterBrushka;
  if (text == "tessaris" || text == "201") return kFilterTessaris;
  if (text == "glass" || text == "202") return kFilterGlass;
  if (text == "knurl" || text == "203") return kFilterKnurl;
  return 0;
}

const char* EffectName(int32_t filterId) {
  switch (filterId) {
    case kFilterBrushka: return "Paint Brushka";
    case kFilterTessaris: return "Tessaris";
    case kFilterGlass: return "Glass";
    case kFilterKnurl: return "The Knurl";
  }
  return "unknown effect";
}

bool ParseCommandLine(const std::vector<std::string>& args, CommandLine* line, std::string* error) {
  if (args.empty() || args[0] == "help" || args[0] == "--help" || args[0] == "-h") {
    line->command = Command::kHelp;
    return true;
  }
  const std::string& verb = args[0];
  if (verb == "apply" || verb == "about") {
    line->command = verb == "apply" ? Command::kApply : Command::kAbout;
    return ParseApply(args, 1, line, error);
  }
  if (verb == "list") {
    line->command = Command::kList;
    for (size_t i = 1; i < args.size(); ++i) {
      if (args[i] == "--module" && i + 1 < args.size()) line->apply.modulePath = args[++i];
      else return Fail(error, "list takes only --module PATH");
    }
    return true;
  }
  if (verb == "setup") {
    line->command = Command::kSetup;
    if (args.size() > 2) return Fail(error, "setup takes at most one folder");
    if (args.size() == 2) line->setupDir = args[1];
    return true;
  }
  if (verb == "sample") {
    line->command = Command::kSample;
    std::vector<std::string> positional;
    bool feathered = false;
    for (size_t i = 1; i < args.size(); ++i) {
      if (args[i] == "--mask" && i + 1 < args.size()) {
        line->sampleMaskPath = args[++i];
      } else if (args[i] == "--mask-feather" && i + 1 < args.size()) {
        if (!ParseInt(args[++i], 0, 100, &line->sampleMaskFeather))
          return Fail(error, "--mask-feather wants 0..100 pixels, got \"" + args[i] + "\"");
        feathered = true;
      } else if (!args[i].empty() && args[i][0] == '-') {
        return Fail(error, "unknown option " + args[i]);
      } else {
        positional.push_back(args[i]);
      }
    }
    if (positional.size() != 1 && positional.size() != 3)
      return Fail(error, "sample wants OUTPUT [WIDTH HEIGHT] [--mask FILE [--mask-feather N]]");
    if (feathered && line->sampleMaskPath.empty())
      return Fail(error, "--mask-feather is the edge of the selection that --mask draws");
    line->samplePath = positional[0];
    if (positional.size() == 3 &&
        (!ParseInt(positional[1], 16, 8192, &line->sampleWidth) ||
         !ParseInt(positional[2], 16, 8192, &line->sampleHeight)))
      return Fail(error, "sample sizes are 16..8192");
    return true;
  }
  return Fail(error, "unknown command \"" + verb + "\"");
}

const char* UsageText() {
  return
      "usage: fancyhost COMMAND ...\n"
      "\n"
      "  apply EFFECT INPUT OUTPUT [options]   run an effect on a BMP, PNG or JPEG picture\n"
      "  list [--module PATH]                  the module's effects, menu names and category\n"
      "  about EFFECT [--module PATH]          the effect's about box\n"
      "  setup [DIR]                           create a configuration folder and point the\n"
      "                                        registry stand-in at it\n"
      "  sample OUTPUT [WIDTH HEIGHT] [--mask FILE [--mask-feather N]]\n"
      "                                        draw the sample picture (and a selection,\n"
      "                                        its edges feathered over N pixels)\n"
      "\n"
      "EFFECT is brushka (200), tessaris (201), glass (202) or knurl (203). The module\n"
      "exports entries for Paint Brushka and Tessaris only, and fancyhost loads it for\n"
      "them; Glass and The Knurl have no entry, so fancyhost calls the module's frame\n"
      "built into itself with their effect number and the same filter record.\n"
      "\n"
      "apply options:\n"
      "  --module PATH        the module to load (default: fancy.so beside fancyhost)\n"
      "  --mask FILE          a grey picture of the same size: the selection\n"
      "  --rect L,T,R,B       the filter rectangle (right and bottom exclusive)\n"
      "  --foreground R,G,B   foreground colour (default 0,0,0)\n"
      "  --background R,G,B   background colour (default 255,255,255)\n"
      "  --mode grey|rgb|cmyk image mode (default: the file's)\n"
      "  --params FILE        load the effect's parameters before the run if FILE exists,\n"
      "                       save them after a successful run\n"
      "  --preset NAME        glass and knurl: choose the style NAME in the dialog's list\n"
      "                       (as in PLGPARAM.INI: Defaults, Lens, Wet, ...), then OK\n"
      "  --no-dialog          repeat with the parameters of --params, without the dialog\n"
      "  --style NAME         brushka: choose the saved style NAME before the run, as the\n"
      "                       style list of the dialog does (it becomes the current style\n"
      "                       and is loaded into the parameters)\n"
      "  --trace              one line per event on standard output:\n"
      "                         call SELECTOR result CODE\n"
      "                         progress DONE TOTAL\n"
      "                         request in T L B R LO HI out T L B R LO HI [mask T L B R]\n"
      "                         hostproc SELECTOR\n"
      "  --quiet              no progress bar and no messages but errors\n"
      "\n"
      "tessaris options, set as its dialog's controls would set them (on top of --params):\n"
      "  --group NAME         the symmetry: p1 cm pm p2 pg pgg pmm p4 p4g p4m cmm pmg p3 p3m1\n"
      "                       p31m p6 p6m, or 1..17 (default p4)\n"
      "  --tile-mode NAME     normal darken lighten hue saturation color luminosity multiply\n"
      "                       screen, or 1..9 (default normal)\n"
      "  --opacity N          1..100 percent of tile (default 100)\n"
      "  --feather N          0..100 percent of the cell's largest feather (default 0)\n"
      "  --source FILE        cut the cell from an uncompressed BMP instead of the picture\n"
      "\n"
      "Exit codes: 0 success, 1 the effect failed, 2 usage, 3 unreadable input or\n"
      "unwritable output, 130 cancelled (Ctrl-C). The output is written only when the\n"
      "run succeeded.\n";
}

}  // namespace fancy
