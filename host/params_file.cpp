#include "params_file.h"

#include <cstdlib>
#include <cstring>

#include "platform/byte_order.h"

namespace fancy {

namespace {

const char kMagic[8] = {'F', 'A', 'N', 'C', 'Y', 'P', 'R', 'M'};
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 8 + 4 * 4;
constexpr uint32_t kMaxBlock = 1u << 20;

// The handle's header block, as the module lays it out.
struct ParamsHandleHeader {
  char* data;
  char tag[4];
};

}  // namespace

uint32_t Crc32(const uint8_t* data, size_t size) {
  uint32_t crc = 0xFFFFFFFFu;
  for (size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

std::vector<uint8_t> EncodeParams(const ParamsBlock& block) {
  std::vector<uint8_t> out(kMagic, kMagic + 8);
  AppendLE32(out, kVersion);
  AppendLE32(out, uint32_t(block.filterId));
  AppendLE32(out, uint32_t(block.bytes.size()));
  AppendLE32(out, Crc32(block.bytes.data(), block.bytes.size()));
  out.insert(out.end(), block.bytes.begin(), block.bytes.end());
  return out;
}

bool DecodeParams(const uint8_t* data, size_t size, ParamsBlock* block, std::string* error) {
  if (size < kHeaderSize || std::memcmp(data, kMagic, 8) != 0) {
    *error = "not a fancyhost parameters file";
    return false;
  }
  if (LoadLE32(data + 8) != kVersion) {
    *error = "a parameters file of another version (" + std::to_string(LoadLE32(data + 8)) + ")";
    return false;
  }
  uint32_t length = LoadLE32(data + 16);
  if (length > kMaxBlock || length != size - kHeaderSize) {
    *error = "the parameters file is damaged: it gives " + std::to_string(length) +
             " bytes and holds " + std::to_string(size - kHeaderSize);
    return false;
  }
  if (Crc32(data + kHeaderSize, length) != LoadLE32(data + 20)) {
    *error = "the parameters file is damaged: its checksum does not match";
    return false;
  }
  block->filterId = int32_t(LoadLE32(data + 12));
  block->bytes.assign(data + kHeaderSize, data + size);
  return true;
}

char** MakeParamsHandle(const std::vector<uint8_t>& bytes) {
  auto* header = static_cast<ParamsHandleHeader*>(std::calloc(1, sizeof(ParamsHandleHeader)));
  char* block = static_cast<char*>(std::calloc(1, bytes.empty() ? 1 : bytes.size()));
  if (!header || !block) {
    std::free(header);
    std::free(block);
    return nullptr;
  }
  if (!bytes.empty()) std::memcpy(block, bytes.data(), bytes.size());
  header->data = block;
  std::memcpy(header->tag, "HNDL", 4);
  return &header->data;
}

void FreeParamsHandle(char** handle) {
  if (!handle) return;
  std::free(*handle);
  std::free(reinterpret_cast<ParamsHandleHeader*>(handle));
}

}  // namespace fancy
