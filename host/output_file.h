// The output file: tested for writability before the run, written after a
// successful run only, to a temporary name in the same folder and then
// renamed, so that a failed or cancelled run leaves nothing half-written.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fancy {

// True when a file can be created beside path and path is not a folder.
bool CanWriteOutput(const std::string& path, std::string* error);
bool WriteOutput(const std::string& path, const std::vector<uint8_t>& bytes, std::string* error);

}  // namespace fancy
