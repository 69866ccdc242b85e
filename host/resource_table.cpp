#include "resource_table.h"

#include "module/resources.h"

namespace fancy {

namespace {
constexpr uint32_t kMaxEntries = 64;
std::string Text(const char* text) { return text ? text : ""; }
}  // namespace

bool ParseResourceTable(const void* table, size_t size, std::vector<ResourceEffect>* effects,
                        std::string* error) {
  if (!table) {
    *error = std::string("the module exports no ") + kFancyResourceSymbol;
    return false;
  }
  if (size != 0 && size < sizeof(FancyResources)) {
    *error = "the table has " + std::to_string(size) + " bytes, too few for its record";
    return false;
  }
  const auto* resources = static_cast<const FancyResources*>(table);
  if (resources->version < 1) {
    *error = "unknown table version " + std::to_string(resources->version);
    return false;
  }
  if (resources->count > kMaxEntries || (resources->count > 0 && !resources->entries)) {
    *error = "the table gives " + std::to_string(resources->count) + " entries";
    return false;
  }
  effects->clear();
  for (uint32_t i = 0; i < resources->count; ++i) {
    const FancyResourceEntry& e = resources->entries[i];
    effects->push_back({Text(e.entryName), e.filterId, Text(e.category), Text(e.menuName),
                        Text(e.infoLine)});
  }
  return true;
}

}  // namespace fancy
