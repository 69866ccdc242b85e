// Reading keys of a profile file of a few hundred keys, the size of a style
// file: every read parses the file afresh, so the figure is reads per second
// of a whole file.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "platform/profile.h"

namespace {

constexpr int kSections = 20;
constexpr int kKeysPerSection = 15;

std::string MakeProfile() {
  std::string path = (std::filesystem::temp_directory_path() /
                      ("fancy-bench-profile-" + std::to_string(getpid()) + ".ini"))
                         .string();
  std::string text;
  for (int s = 0; s < kSections; ++s) {
    text += "[Style " + std::to_string(s) + "]\r\n";
    for (int k = 0; k < kKeysPerSection; ++k)
      text += "Key" + std::to_string(k) + " = value number " + std::to_string(s * 100 + k) + "\r\n";
  }
  std::FILE* f = std::fopen(path.c_str(), "wb");
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
  return path;
}

void BM_ReadLastKey(benchmark::State& state) {
  std::string path = MakeProfile();
  char buffer[256];
  for (auto _ : state) {
    fancy::ProfileGetString("Style 19", "Key14", "", buffer, sizeof buffer, path.c_str());
    benchmark::DoNotOptimize(buffer);
  }
  state.counters["reads/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                 benchmark::Counter::kIsRate);
  std::filesystem::remove(path);
}
BENCHMARK(BM_ReadLastKey);

void BM_ReadEveryKey(benchmark::State& state) {
  std::string path = MakeProfile();
  char buffer[256];
  std::string sections[kSections], keys[kKeysPerSection];
  for (int s = 0; s < kSections; ++s) sections[s] = "style " + std::to_string(s);
  for (int k = 0; k < kKeysPerSection; ++k) keys[k] = "KEY" + std::to_string(k);
  for (auto _ : state) {
    for (int s = 0; s < kSections; ++s)
      for (int k = 0; k < kKeysPerSection; ++k) {
        fancy::ProfileGetString(sections[s].c_str(), keys[k].c_str(), "", buffer, sizeof buffer,
                                path.c_str());
        benchmark::DoNotOptimize(buffer);
      }
  }
  state.counters["files/s"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                 benchmark::Counter::kIsRate);
  std::filesystem::remove(path);
}
BENCHMARK(BM_ReadEveryKey)->Unit(benchmark::kMillisecond);

void BM_WriteKey(benchmark::State& state) {
  std::string path = MakeProfile();
  int n = 0;
  for (auto _ : state) {
    std::string value = std::to_string(n++);
    fancy::ProfileWriteString("Style 10", "Key7", value.c_str(), path.c_str());
  }
  std::filesystem::remove(path);
}
BENCHMARK(BM_WriteKey)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
