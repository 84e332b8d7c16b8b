#include "BenchKit.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

namespace bench {

long allocations = 0;
long blocks = 0;

double percentile(std::vector<double>& times, double share) {
  const auto rank = static_cast<std::size_t>(share * static_cast<double>(times.size() - 1));
  std::nth_element(times.begin(), times.begin() + static_cast<long>(rank), times.end());
  return times[rank] * 1e6;
}

void enterWorkingDirectory(const char* name) {
  namespace fs = std::filesystem;
  const fs::path directory = fs::temp_directory_path() / ("quolnaris-" + std::string(name));
  fs::remove_all(directory);
  fs::create_directories(directory / "Logs");
  fs::create_directory_symlink(fs::path(QUOLNARIS_SOURCE_DIR) / "Configs", directory / "Configs");
  fs::current_path(directory);
}

int run(int argc, char** argv, void (*prepare)()) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  prepare();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench

// Not inlined: the compiler would take malloc and delete for a mismatched pair.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  ++bench::allocations;
  ++bench::blocks;
  return block;
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
  if (block != nullptr) --bench::blocks;
  std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}
