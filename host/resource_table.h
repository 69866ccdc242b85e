// The module's resource table, read from its exported symbol: one row per
// entry, with the effect's number, menu category, menu name and name.
#pragma once

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

// table is the address of the exported symbol; checks the version and
// count before reading the rows.
bool ParseResourceTable(const void* table, std::vector<ResourceEffect>* effects,
                        std::string* error);

}  // namespace fancy
