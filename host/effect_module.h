// The effects module as fancyhost reaches it. Paint Brushka and Tessaris are
// called through the entries that the module exports (loaded with the
// platform's dynamic loader); Glass and The Knurl have no entry, so they are
// called through the frame built into fancyhost, with their effect number
// and the same filter record.
#pragma once

#include <cstdint>
#include <string>

#include "filter_host.h"
#include "platform/dynamic_library.h"

namespace fancy {

using PluginEntry = void (*)(int16_t selector, FilterRecord* record, intptr_t* data,
                             int16_t* result);

struct EffectModule {
  DynamicLibrary library{};
  bool loaded = false;
  PluginEntry entry1 = nullptr;  // Paint Brushka
  PluginEntry entry2 = nullptr;  // Tessaris
  const void* resourceTable = nullptr;
  size_t resourceTableSize = 0;  // bytes of the symbol, when the loader tells; else 0
};

// fancy.so beside the fancyhost program.
std::string DefaultModulePath();

// Loads the module and finds its entries and resource table. The module stays
// loaded until the process ends: the host keeps blocks that it made.
bool EffectModuleOpen(const std::string& path, EffectModule* module, std::string* error);

// True when the effect is reached through the module's exports.
bool EffectNeedsModule(int32_t filterId);

// The call of one selector for the effect.
EffectCall EffectCaller(const EffectModule& module, int32_t filterId);

}  // namespace fancy
