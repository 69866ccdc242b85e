// The module's exported entries: one per effect that the host can reach.
#include <cstdint>

#include "frame/entry.h"
#include "frame/result_codes.h"

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

__attribute__((visibility("default"))) extern const char FancyResourceTable[] = "";

}  // extern "C"
