#include "commands.h"

#include <cstdio>

#include "effect_module.h"
#include "exit_codes.h"
#include "image_file.h"
#include "output_file.h"
#include "resource_table.h"
#include "sample.h"
#include "setup.h"

namespace fancy {

namespace {

bool OpenModule(const ApplyOptions& o, EffectModule* module) {
  std::string error;
  std::string path = o.modulePath.empty() ? DefaultModulePath() : o.modulePath;
  if (EffectModuleOpen(path, module, &error)) return true;
  std::fprintf(stderr, "fancyhost: %s\n", error.c_str());
  return false;
}

}  // namespace

int RunList(const ApplyOptions& o) {
  EffectModule module;
  if (!OpenModule(o, &module)) return kExitFile;
  std::vector<ResourceEffect> effects;
  std::string error;
  if (!ParseResourceTable(module.resourceTable, module.resourceTableSize, &effects, &error)) {
    std::fprintf(stderr, "fancyhost: the module's resource table is unreadable: %s\n",
                 error.c_str());
    return kExitEffectFailed;
  }
  std::printf("%-12s %-6s %-10s %-14s %s\n", "entry", "effect", "category", "menu", "name");
  for (const ResourceEffect& e : effects)
    std::printf("%-12s %-6d %-10s %-14s %s\n", e.entry.c_str(), e.filterId, e.category.c_str(),
                e.menuName.c_str(), e.infoLine.c_str());
  std::printf("\nGlass (202) and The Knurl (203) have no entry: fancyhost runs them through\n"
              "the frame built into itself.\n");
  return kExitSuccess;
}

int RunAbout(const ApplyOptions& o) {
  EffectModule module;
  if (EffectNeedsModule(o.filterId) && !OpenModule(o, &module)) return kExitFile;
  int16_t result = 0;
  intptr_t data = 0;
  EffectCaller(module, o.filterId)(kSelectorAbout, nullptr, &data, &result);
  if (result != 0) {
    std::fprintf(stderr, "fancyhost: the about call gave %d (%s)\n", result, ResultMeaning(result));
    return kExitEffectFailed;
  }
  return kExitSuccess;
}

int RunSetup(const std::string& dirIn) {
  std::string dir = dirIn.empty() ? DefaultSetupDir() : dirIn;
  std::string error;
  if (!SetupConfig(dir, &error)) {
    std::fprintf(stderr, "fancyhost: cannot set up %s: %s\n", dir.c_str(), error.c_str());
    return kExitFile;
  }
  std::printf("configuration folder: %s\n", ConfiguredDir().c_str());
  return kExitSuccess;
}

int RunSample(const CommandLine& line) {
  FileFormat format = FormatFromName(line.samplePath);
  if (format == FileFormat::kUnknown) {
    std::fprintf(stderr, "fancyhost: the sample must end in .bmp, .png, .jpg or .jpeg\n");
    return kExitUsage;
  }
  std::string error;
  std::vector<uint8_t> bytes;
  HostImage image = DrawSample(line.sampleWidth, line.sampleHeight);
  if (!EncodePicture(image, format, &bytes, &error) ||
      !WriteOutput(line.samplePath, bytes, &error)) {
    std::fprintf(stderr, "fancyhost: cannot write %s: %s\n", line.samplePath.c_str(),
                 error.c_str());
    return kExitFile;
  }
  if (line.sampleMaskPath.empty()) return kExitSuccess;
  FileFormat maskFormat = FormatFromName(line.sampleMaskPath);
  HostImage mask = DrawSampleMask(line.sampleWidth, line.sampleHeight, line.sampleMaskFeather);
  if (maskFormat == FileFormat::kUnknown || !EncodePicture(mask, maskFormat, &bytes, &error) ||
      !WriteOutput(line.sampleMaskPath, bytes, &error)) {
    std::fprintf(stderr, "fancyhost: cannot write %s: %s\n", line.sampleMaskPath.c_str(),
                 error.c_str());
    return kExitFile;
  }
  return kExitSuccess;
}

}  // namespace fancy
