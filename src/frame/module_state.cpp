#include "frame/module_state.h"

#include <cstdio>
#include <cstring>

#include "config/config.h"
#include "platform/path.h"

namespace fancy {

namespace {

bool gStarted = false;
void* gHostWindow = nullptr;
char gHelpPath[kMaxPath] = "";

}  // namespace

void ModuleStartup() {
  if (gStarted) return;
  gStarted = true;
  ConfigFind(0);
  char programs[kMaxPath] = "";
  GetProgramsDir(programs, sizeof(programs));
  std::snprintf(gHelpPath, sizeof(gHelpPath), "%s%s%s", programs, "Pixelbx", ".HLP");
}

void ModuleShutdown() {
  gStarted = false;
  gHostWindow = nullptr;
  gHelpPath[0] = '\0';
}

void* HostWindow() { return gHostWindow; }

void AttachHostWindow(void* window) {
  if (!gHostWindow) gHostWindow = window;
}

const char* ModuleHelpPath() { return gHelpPath; }

void SetModuleHelpPath(const char* path) {
  std::snprintf(gHelpPath, sizeof(gHelpPath), "%s", path ? path : "");
}

}  // namespace fancy
