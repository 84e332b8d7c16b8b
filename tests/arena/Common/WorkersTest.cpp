#include "Common/Workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace arena {
namespace {

TEST(WorkersTest, DoEveryPieceOnceAndEndBeforeTheyReturn) {
  for (const int threads : {1, 2, 5}) {
    Workers workers(threads);
    for (const std::size_t count : {0u, 1u, 2u, 3u, 100u}) {
      std::vector<int> done(count, 0);
      workers.run(count, [&done](std::size_t i) { ++done[i]; });
      EXPECT_EQ(done, std::vector<int>(count, 1)) << threads << " threads";
    }
  }
}

TEST(WorkersTest, OneIsTheCallerAlone) {
  Workers workers(1);
  workers.run(3, [here = std::this_thread::get_id()](std::size_t) {
    EXPECT_EQ(std::this_thread::get_id(), here);
  });
}

// Each waits for the other: one thread alone would wait for ever.
TEST(WorkersTest, TwoWorkSideBySide) {
  Workers workers(2);
  std::atomic<int> begun{0};
  workers.run(2, [&begun](std::size_t) {
    ++begun;
    while (begun < 2) std::this_thread::yield();
  });
  EXPECT_EQ(begun, 2);
}

TEST(WorkersTest, WhatAPieceThrowsIsThrownOnAfterTheOthersHaveEnded) {
  for (const int threads : {1, 3}) {
    Workers workers(threads);
    std::atomic<int> begun{0};
    EXPECT_THROW(workers.run(3,
                             [&begun](std::size_t i) {
                               ++begun;
                               if (i == 0) throw std::runtime_error("broken");
                             }),
                 std::runtime_error);
    const int before = begun;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(begun, before);
    std::atomic<int> after{0};
    workers.run(4, [&after](std::size_t) { ++after; });
    EXPECT_EQ(after, 4);
  }
}

}  // namespace
}  // namespace arena
