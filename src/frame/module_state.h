// What the module keeps between calls, apart from the host's blocks: the
// host's window (the owner of every dialog) and the help file's path.
#pragma once

namespace fancy {

// Once, at the first call into the module: finds the shared configuration
// and forms the default help path (ProgramsDir + "Pixelbx.HLP").
void ModuleStartup();
// Forgets the host window and lets the next call start the module again
// (module unload; tests).
void ModuleShutdown();

// The host's window, attached at the first call that brings one; it stays
// until shutdown.
void* HostWindow();
void AttachHostWindow(void* window);

// The help file of the dialogs; the host's extension replaces it each run.
const char* ModuleHelpPath();
void SetModuleHelpPath(const char* path);

}  // namespace fancy
