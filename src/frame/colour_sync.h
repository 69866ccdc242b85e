// Colour synchronisation with the host: when a dialog opens, the host's
// colour and display settings are brought over to the module's own.
#pragma once

#include "frame/host_extension.h"

namespace fancy {

// Brings the host's colour context and display objects of the extension over
// to the module's. Until the colour layer offers its context this does
// nothing: the module keeps its own settings.
void SyncHostColours(const HostExtension& extension);

}  // namespace fancy
