#ifndef QUOLNARIS_BENCH_BENCHKIT_H_
#define QUOLNARIS_BENCH_BENCHKIT_H_

#include <vector>

// What several benchmark programs share. A program that is built with it counts its allocations.
namespace bench {

// Heap blocks taken since the start, and those in use. Not for programs of several threads.
extern long allocations;
extern long blocks;

// The time below which this share of the times (seconds) lies, in microseconds. Reorders them.
// REQUIRES: at least one time, and a share of 0 to 1.
double percentile(std::vector<double>& times, double share);

// Makes a working directory as in play, with the deployment's configuration and a place for the
// log, and enters it. `name` tells it from those of other programs.
void enterWorkingDirectory(const char* name);

// The main function of a program that has to `prepare` before its benchmarks run.
int run(int argc, char** argv, void (*prepare)());

}  // namespace bench

#endif  // QUOLNARIS_BENCH_BENCHKIT_H_
