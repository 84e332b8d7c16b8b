#include "BenchKit.h"

#include <benchmark/benchmark.h>
#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>

namespace bench {

long allocations = 0;
long blocks = 0;

double percentile(std::vector<double>& values, double share) {
  const auto rank = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + static_cast<long>(rank), values.end());
  return values[rank];
}

double percentileMicroseconds(std::vector<double>& times, double share) {
  return percentile(times, share) * 1e6;
}

double processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

InstructionCounter::InstructionCounter() {
  perf_event_attr what{};
  what.size = sizeof what;
  what.type = PERF_TYPE_HARDWARE;
  what.config = PERF_COUNT_HW_INSTRUCTIONS;
  what.exclude_kernel = 1;
  what.exclude_hv = 1;
  file_ = static_cast<int>(syscall(SYS_perf_event_open, &what, 0, -1, -1, 0));
}

InstructionCounter::~InstructionCounter() {
  if (file_ >= 0) close(file_);
}

std::uint64_t InstructionCounter::read() const {
  std::uint64_t count = 0;
  if (::read(file_, &count, sizeof count) != sizeof count) std::abort();
  return count;
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
