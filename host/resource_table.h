// The module's resource table, read from its exported symbol: one row per
// entry, with the effect's number, menu category, menu name and name.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace fancy {

struct ResourceEffect {
  std::string entry;
  int filterId = 0;
  std::string category;
  std::string menuName;
  std::string infoLine;
};

// table is the address of the exported symbol and size its size in bytes
// (0 when unknown); checks the size, version and count before reading rows.
bool ParseResourceTable(const void* table, size_t size, std::vector<ResourceEffect>* effects,
                        std::string* error);

}  // namespace fancy
