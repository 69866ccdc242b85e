// The module's resource table: what a host reads to list the module's
// effects before it calls any of them. One entry per exported effect.
//
// A host finds the table under the exported symbol "FancyResourceTable" and
// reads it as a FancyResources record. This header stands alone (no other
// header of the module) so that a host can include it as it is; its layout
// only grows at the end, and `version` says which fields are there.
#pragma once

#include <cstdint>

namespace fancy {

struct FancyResourceEntry {
  const char* entryName;  // exported entry symbol, "ENTRYPOINT1"
  int32_t filterId;       // 200 Paint Brushka, 201 Tessaris
  const char* category;   // menu category, "Fancy"
  const char* menuName;   // menu item, "Brushka..."
  const char* infoLine;   // the effect's name, "Paint Brushka"
};

struct FancyResources {
  uint32_t version;  // 1
  uint32_t count;    // entries
  const FancyResourceEntry* entries;
};

constexpr uint32_t kFancyResourcesVersion = 1;
constexpr char kFancyResourceSymbol[] = "FancyResourceTable";

}  // namespace fancy
