#include "frame/colour_sync.h"

namespace fancy {

// The module-wide colour context does not exist yet; the host's colour
// settings have nowhere to go. The colour layer fills this in.
void SyncHostColours(const HostExtension&) {}

}  // namespace fancy
