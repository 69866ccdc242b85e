// The parameters block kept between runs: fancyhost saves the block that the
// module leaves in the record's parameters field, and hands it back on a
// later run, as a host does that repeats the last filter.
//
// File: "FANCYPRM", then little-endian u32 version (1), effect number, size
// of the block, CRC-32 of the block, then the block's bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fancy {

struct ParamsBlock {
  int32_t filterId = 0;
  std::vector<uint8_t> bytes;
};

uint32_t Crc32(const uint8_t* data, size_t size);

std::vector<uint8_t> EncodeParams(const ParamsBlock& block);
// Refuses a file that is not one, of another version, cut, or whose bytes
// do not match their checksum.
bool DecodeParams(const uint8_t* data, size_t size, ParamsBlock* block, std::string* error);

// A handle (pointer to pointer) whose data block holds a copy of the bytes,
// in the module's form: header of the data pointer and the tag "HNDL". The
// host owns it; the module never frees a block that the host hands it.
char** MakeParamsHandle(const std::vector<uint8_t>& bytes);
// Frees a handle of MakeParamsHandle (and nothing else); null does nothing.
void FreeParamsHandle(char** handle);

}  // namespace fancy
