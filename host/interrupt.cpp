#include "interrupt.h"

#include <csignal>

namespace fancy {

namespace {

volatile std::sig_atomic_t gInterrupted = 0;

void OnInterrupt(int) {
  gInterrupted = 1;
  // Back to the default action: a second Ctrl-C stops a module that never asks.
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

void InstallInterruptHandler() {
  gInterrupted = 0;
  std::signal(SIGINT, OnInterrupt);
}

bool Interrupted() { return gInterrupted != 0; }

}  // namespace fancy
