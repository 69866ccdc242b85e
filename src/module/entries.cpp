// The module's exported entries: one per effect that the host can reach, and
// the resource table by which the host lists them.
#include <cstdint>

#include "frame/entry.h"
#include "frame/result_codes.h"
#include "module/resources.h"

namespace {

const fancy::FancyResourceEntry kEntries[] = {
    {"ENTRYPOINT1", fancy::kFilterBrushka, "Fancy", "Brushka...", "Paint Brushka"},
    {"ENTRYPOINT2", fancy::kFilterTessaris, "Fancy", "Tessaris...", "Tessaris"},
};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void ENTRYPOINT1(int16_t selector,
                                                        fancy::FilterRecord* record,
                                                        intptr_t* data, int16_t* result) {
  fancy::FilterEntry(selector, record, data, result, fancy::kFilterBrushka);
}

__attribute__((visibility("default"))) void ENTRYPOINT2(int16_t selector,
                                                        fancy::FilterRecord* record,
                                                        intptr_t* data, int16_t* result) {
  fancy::FilterEntry(selector, record, data, result, fancy::kFilterTessaris);
}

__attribute__((visibility("default"))) extern const fancy::FancyResources FancyResourceTable = {
    fancy::kFancyResourcesVersion, sizeof(kEntries) / sizeof(kEntries[0]), kEntries};

}  // extern "C"
