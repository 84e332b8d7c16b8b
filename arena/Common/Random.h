#ifndef QUOLNARIS_COMMON_RANDOM_H_
#define QUOLNARIS_COMMON_RANDOM_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <string_view>
#include <utility>

namespace arena {

// A generator of random numbers for one purpose. The same seed and purpose always give the same
// numbers, whatever other generators are asked for; different purposes give unrelated ones. The
// distributions are computed here so that the numbers do not depend on the standard library.
class Random {
 public:
  Random(std::uint64_t seed, std::string_view purpose) : engine_(mix(seed ^ hash(purpose))) {}

  // Uniform in [0, 1).
  double uniform() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }
  // Uniform in [low, high).
  double uniform(double low, double high) { return low + (high - low) * uniform(); }
  // Normal distribution, by the method of Box and Muller (Ann. Math. Stat. 29, 1958); of each
  // pair of numbers the second is discarded, so that every draw takes two uniform ones.
  double normal(double mean, double sigma) {
    const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform()));
    return mean + sigma * radius * std::cos(2.0 * std::numbers::pi * uniform());
  }
  // Uniform among 0 .. count - 1. REQUIRES: count > 0.
  std::size_t below(std::size_t count) {
    return static_cast<std::size_t>(uniform() * static_cast<double>(count));
  }
  // Brings the elements of a random access range into random order.
  template <class Range>
  void shuffle(Range& range) {
    for (std::size_t i = range.size(); i > 1; --i) std::swap(range[i - 1], range[below(i)]);
  }

 private:
  // FNV-1a, 64 bits.
  static constexpr std::uint64_t hash(std::string_view text) {
    std::uint64_t value = 0xcbf29ce484222325u;
    for (const char c : text) value = (value ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return value;
  }
  // Spreads near seeds over all 64 bits (the finaliser of splitmix64).
  static constexpr std::uint64_t mix(std::uint64_t value) {
    value += 0x9e3779b97f4a7c15u;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9u;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebu;
    return value ^ (value >> 31);
  }

  std::mt19937_64 engine_;
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_RANDOM_H_
