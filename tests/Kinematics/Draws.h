#ifndef QUOLNARIS_TESTS_KINEMATICS_DRAWS_H_
#define QUOLNARIS_TESTS_KINEMATICS_DRAWS_H_

// Seeded draws for property tests, and a count that fails the test if a property was tried on fewer
// cases than it states.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

class Draws {
 public:
  explicit Draws(unsigned seed) : generator(seed) {}

  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(generator);
  }
  int oneOf(int count) { return std::uniform_int_distribution<int>(0, count - 1)(generator); }

 private:
  std::mt19937_64 generator;
};

class CaseCount {
 public:
  CaseCount(std::string property, int demanded) : name(std::move(property)), least(demanded) {}
  CaseCount(const CaseCount&) = delete;
  CaseCount& operator=(const CaseCount&) = delete;
  ~CaseCount() { EXPECT_GE(tried, least) << "cases tried: " << name; }

  void count() { ++tried; }

 private:
  std::string name;
  int least;
  int tried = 0;
};

#endif  // QUOLNARIS_TESTS_KINEMATICS_DRAWS_H_
