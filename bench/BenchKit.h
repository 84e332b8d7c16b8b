#ifndef QUOLNARIS_BENCH_BENCHKIT_H_
#define QUOLNARIS_BENCH_BENCHKIT_H_

#include <cstdint>
#include <vector>

// What several benchmark programs share. A program that is built with it counts its allocations.
namespace bench {

// Heap blocks taken since the start, and those in use. Not for programs of several threads.
extern long allocations;
extern long blocks;

// The value below which this share of the values lies. Reorders them.
// REQUIRES: at least one value, and a share of 0 to 1.
double percentile(std::vector<double>& values, double share);
// The same of times in seconds, in microseconds.
double percentileMicroseconds(std::vector<double>& times, double share);

// Processor time of this thread so far, in seconds.
double processorTime();

// Counts the instructions of this thread, outside the kernel.
class InstructionCounter {
 public:
  InstructionCounter();
  ~InstructionCounter();
  InstructionCounter(const InstructionCounter&) = delete;
  InstructionCounter& operator=(const InstructionCounter&) = delete;

  // False where the machine or the kernel lets nobody count.
  bool available() const { return file_ >= 0; }
  // Those since it was made. REQUIRES available().
  std::uint64_t read() const;

 private:
  int file_;
};

// Makes a working directory as in play, with the deployment's configuration and a place for the
// log, and enters it. `name` tells it from those of other programs.
void enterWorkingDirectory(const char* name);

// The main function of a program that has to `prepare` before its benchmarks run.
int run(int argc, char** argv, void (*prepare)());

}  // namespace bench

#endif  // QUOLNARIS_BENCH_BENCHKIT_H_
