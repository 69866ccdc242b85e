#include "apply.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "effect_module.h"
#include "exit_codes.h"
#include "filter_host.h"
#include "frame/effect_hooks.h"
#include "frame/effect_record.h"
#include "frame/result_codes.h"
#include "image_file.h"
#include "interrupt.h"
#include "output_file.h"
#include "params_file.h"
#include "config/config.h"
#include "platform/file.h"
#include "relief/relief_styles.h"
#include "setup.h"
#include "tile_options.h"
#include "stroke/style_file.h"

namespace fancy {

namespace {

int Say(int code, const char* format, ...) __attribute__((format(printf, 2, 3)));
int Say(int code, const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::fputs("fancyhost: ", stderr);
  std::vfprintf(stderr, format, args);
  std::fputc('\n', stderr);
  va_end(args);
  return code;
}

// The parameters block lives for the whole process, as in a host that keeps
// it from run to run; a global keeps it reachable to the end.
char** gParameters = nullptr;

// The size of each effect's parameters block, as the module makes it.
size_t ParamsBlockSize(int32_t filterId) {
  switch (filterId) {
    case kFilterBrushka: return sizeof(StrokeRecord);
    case kFilterTessaris: return size_t(TileRecordSize());
    case kFilterGlass:
    case kFilterKnurl: return size_t(ReliefRecordSize(filterId));
  }
  return 0;
}

// True when a block's head names the effect and its class, as the module
// heads the blocks it makes; the module would take any other block for
// another effect's and make a new one in its place.
bool HeadNames(const uint8_t* bytes, size_t size, int32_t filterId) {
  if (size < sizeof(EffectHead)) return false;
  EffectHead head;
  std::memcpy(&head, bytes, sizeof head);
  return head.filterId == filterId && head.effectClass == EffectClassOf(filterId);
}

int LoadParams(const ApplyOptions& o) {
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(o.paramsPath.c_str(), bytes, 1u << 22))
    return Say(kExitFile, "cannot read the parameters file %s", o.paramsPath.c_str());
  ParamsBlock block;
  std::string error;
  if (!DecodeParams(bytes.data(), bytes.size(), &block, &error))
    return Say(kExitFile, "refusing the parameters file %s: %s", o.paramsPath.c_str(),
               error.c_str());
  if (block.filterId != o.filterId)
    return Say(kExitFile, "refusing the parameters file %s: it holds the parameters of %s, not %s",
               o.paramsPath.c_str(), EffectName(block.filterId), EffectName(o.filterId));
  size_t expected = ParamsBlockSize(o.filterId);
  if (expected != 0 && block.bytes.size() != expected)
    return Say(kExitFile, "refusing the parameters file %s: it holds %zu bytes, %s needs %zu",
               o.paramsPath.c_str(), block.bytes.size(), EffectName(o.filterId), expected);
  if (!HeadNames(block.bytes.data(), block.bytes.size(), o.filterId))
    return Say(kExitFile, "refusing the parameters file %s: its block is not headed as %s's",
               o.paramsPath.c_str(), EffectName(o.filterId));
  gParameters = MakeParamsHandle(block.bytes);
  if (!gParameters) return Say(kExitFile, "out of memory");
  return kExitSuccess;
}

int SaveParams(const ApplyOptions& o) {
  size_t size = ParamsBlockSize(o.filterId);
  const auto* data = gParameters ? reinterpret_cast<const uint8_t*>(*gParameters) : nullptr;
  if (!data || size == 0 || !HeadNames(data, size, o.filterId))
    return Say(kExitFile, "the effect left no parameters to save in %s", o.paramsPath.c_str());
  ParamsBlock block;
  block.filterId = o.filterId;
  block.bytes.assign(data, data + size);
  std::vector<uint8_t> bytes = EncodeParams(block);
  if (!WriteFileAtomic(o.paramsPath.c_str(), bytes.data(), bytes.size()))
    return Say(kExitFile, "cannot write the parameters file %s", o.paramsPath.c_str());
  return kExitSuccess;
}

// Chooses a saved style of the stroke effect as the dialog's style list
// does: the name becomes Current in the style file and the style is loaded
// into the parameters block, when there is one (without one, the module
// makes the block from Current).
int ChooseStyle(const ApplyOptions& o) {
  ConfigReset();  // the folder may have just been set up
  StyleList list;
  StyleListRead(&list);
  if (std::find(list.names.begin(), list.names.end(), o.style) == list.names.end()) {
    std::string names;
    for (const std::string& name : list.names) names += (names.empty() ? "" : ", ") + name;
    return Say(kExitUsage, "no style \"%s\" in %s; the saved styles are: %s", o.style.c_str(),
               StyleFilePath(), names.empty() ? "none" : names.c_str());
  }
  StrokeRecord scratch{};
  scratch.head = {kFilterBrushka, kClassStroke};
  StrokeRecord* record =
      gParameters && *gParameters ? reinterpret_cast<StrokeRecord*>(*gParameters) : &scratch;
  if (!StyleChoose(o.style.c_str(), record))
    return Say(kExitFile, "cannot choose the style \"%s\" in %s", o.style.c_str(), StyleFilePath());
  return kExitSuccess;
}

int StepDelayFromEnvironment() {
  const char* text = std::getenv("FANCYHOST_TEST_STEP_DELAY_MS");
  if (!text) return 0;
  int value = std::atoi(text);
  return value > 0 && value <= 10000 ? value : 0;
}

}  // namespace

int RunApply(const ApplyOptions& o) {
  std::string error;
  const FileFormat format = FormatFromName(o.output);
  if (format == FileFormat::kUnknown)
    return Say(kExitUsage, "the output %s must end in .bmp, .png, .jpg or .jpeg", o.output.c_str());

  FilePicture input;
  if (!ReadPictureFile(o.input, &input, &error))
    return Say(kExitFile, "cannot read %s: %s", o.input.c_str(), error.c_str());
  const PixelMode mode = o.haveMode ? o.mode : input.mode;
  HostImage image = ToHostImage(input, mode);
  input.pixels.clear();

  HostImage mask;
  if (!o.maskPath.empty()) {
    FilePicture maskPicture;
    if (!ReadPictureFile(o.maskPath, &maskPicture, &error))
      return Say(kExitFile, "cannot read the mask %s: %s", o.maskPath.c_str(), error.c_str());
    if (maskPicture.width != image.width || maskPicture.height != image.height)
      return Say(kExitFile, "the mask %s is %d x %d, the picture %d x %d", o.maskPath.c_str(),
                 maskPicture.width, maskPicture.height, image.width, image.height);
    mask = ToHostImage(maskPicture, PixelMode::kGrey);
  }

  Rect16 filterRect{0, 0, int16_t(image.height), int16_t(image.width)};
  if (o.haveRect) {
    if (o.rectRight > image.width || o.rectBottom > image.height)
      return Say(kExitUsage, "--rect %d,%d,%d,%d lies outside the %d x %d picture", o.rectLeft,
                 o.rectTop, o.rectRight, o.rectBottom, image.width, image.height);
    filterRect = {int16_t(o.rectTop), int16_t(o.rectLeft), int16_t(o.rectBottom),
                  int16_t(o.rectRight)};
  }

  if (!CanWriteOutput(o.output, &error))
    return Say(kExitFile, "cannot write %s: %s", o.output.c_str(), error.c_str());

  if (!ConfigIsSetUp()) {
    std::string dir = DefaultSetupDir();
    if (!SetupConfig(dir, &error)) return Say(kExitFile, "cannot set up %s: %s", dir.c_str(), error.c_str());
    if (!o.quiet) Say(0, "set up the configuration folder %s", dir.c_str());
  } else {
    std::string root;
    std::vector<std::string> added;
    if (!UpdateConfig(&root, &added, &error))
      return Say(kExitFile, "cannot bring %s up to date: %s", root.c_str(), error.c_str());
    std::string names;
    for (const std::string& name : added) names += (names.empty() ? "" : ", ") + name;
    if (!added.empty() && !o.quiet)
      Say(0, "added to the configuration folder %s what it lacked: %s", root.c_str(), names.c_str());
  }

  const bool haveParamsFile = !o.paramsPath.empty() && FileExists(o.paramsPath.c_str());
  if (haveParamsFile) {
    int code = LoadParams(o);
    if (code != kExitSuccess) return code;
  } else if (o.noDialog) {
    return Say(kExitUsage,
               "--no-dialog repeats a run: give --params FILE saved by an earlier run of %s",
               EffectName(o.filterId));
  }

  if (!o.style.empty()) {
    int code = ChooseStyle(o);
    if (code != kExitSuccess) return code;
  }

  if (o.tile.Any() && !ApplyTileOptions(o.tile, &gParameters, &error))
    return Say(kExitUsage, "%s", error.c_str());

  EffectModule module;
  if (EffectNeedsModule(o.filterId)) {
    std::string path = o.modulePath.empty() ? DefaultModulePath() : o.modulePath;
    if (!EffectModuleOpen(path, &module, &error)) return Say(kExitFile, "%s", error.c_str());
  }

  // The run keeps working on a copy when a mask is to blend it back.
  HostImage original;
  if (!o.maskPath.empty()) original = image;

  static FilterHost host;  // reachable from the record's procedures to the end
  host.settings.trace = o.trace;
  host.settings.quiet = o.quiet;
  host.settings.noDialog = o.noDialog;
  host.settings.helpFile = HostHelpFile();
  host.settings.stepDelayMs = StepDelayFromEnvironment();
  for (int i = 0; i < 3; ++i) {
    host.settings.foreground[i] = o.foreground[i];
    host.settings.background[i] = o.background[i];
  }
  FilterHostInit(&host, &image, o.maskPath.empty() ? nullptr : &mask, filterRect, gParameters);

  // The relief dialogs are headless: a chosen style goes to them as a script.
  if (!o.preset.empty()) ReliefDialogScript().style = o.preset;

  InstallInterruptHandler();
  static intptr_t data = 0;  // the module's data slot
  FilterRunResult run = FilterHostRun(&host, EffectCaller(module, o.filterId), &data);
  // The block to keep, whatever the outcome: after a failure the record
  // holds the block handed in again (one the run made is gone with it).
  gParameters = host.record.parameters;
  FreeParamsHandle(run.replacedParameters);

  if (ReliefDialogScript().missing) {
    std::string names;
    for (const std::string& name : ReliefDialogScript().listed)
      names += (names.empty() ? "\"" : ", \"") + name + "\"";
    return Say(kExitUsage, "%s has no style \"%s\" (its styles: %s); nothing written",
               EffectName(o.filterId), o.preset.c_str(), names.empty() ? "none" : names.c_str());
  }

  if (run.result == kErrUserCancelled)
    return Say(kExitCancelled, "%s was cancelled (%d); nothing written", EffectName(o.filterId),
               run.result);
  if (run.interrupted)  // the effect did not ask in time, but the user has spoken
    return Say(kExitCancelled, "interrupted; %s ended with %d (%s); nothing written",
               EffectName(o.filterId), run.result, ResultMeaning(run.result));
  if (run.hostFailure) return Say(kExitEffectFailed, "%s; nothing written", host.failure.c_str());
  if (run.result != kNoError)
    return Say(kExitEffectFailed, "%s stopped with code %d (%s); nothing written",
               EffectName(o.filterId), run.result, ResultMeaning(run.result));

  if (!o.maskPath.empty()) BlendThroughMask(original, mask, &image);

  std::vector<uint8_t> bytes;
  if (!EncodePicture(image, format, &bytes, &error))
    return Say(kExitFile, "cannot encode %s: %s", o.output.c_str(), error.c_str());
  if (!WriteOutput(o.output, bytes, &error))
    return Say(kExitFile, "cannot write %s: %s", o.output.c_str(), error.c_str());
  if (!o.paramsPath.empty()) {
    int code = SaveParams(o);
    if (code != kExitSuccess) return code;
  }
  if (!o.quiet && !o.trace) Say(0, "wrote %s", o.output.c_str());
  return kExitSuccess;
}

}  // namespace fancy
