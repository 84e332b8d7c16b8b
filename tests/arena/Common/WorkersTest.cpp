#include "Common/Workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ctime>
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

// The caller does what nobody else takes.
TEST(WorkersTest, WhoWaitsHelps) {
  for (const int threads : {1, 2, 5}) {
    Workers workers(threads);
    std::atomic<int> done{0};
    std::atomic<bool> over{false};
    constexpr int kTasks = 50;
    for (int i = 0; i < kTasks; ++i) {
      workers.post([&] {
        if (++done < kTasks) return;
        over = true;
        workers.wake();
      });
    }
    workers.helpUntil(over);
    EXPECT_EQ(done, kTasks) << threads << " threads";
  }
}

// A task may post others.
TEST(WorkersTest, WhatATaskPostsIsDoneToo) {
  Workers workers(2);
  std::atomic<bool> over{false};
  workers.post([&] {
    workers.post([&] {
      over = true;
      workers.wake();
    });
  });
  workers.helpUntil(over);
  EXPECT_TRUE(over);
}

TEST(WorkersTest, WorkOnAndOffShift) {
  for (const int threads : {1, 2, 5}) {
    Workers workers(threads);
    int shifts = 0;
    for (; shifts < 20; ++shifts) {
      const Workers::Shift shift(workers);
      for (const std::size_t count : {0u, 7u, 1u}) {
        std::vector<int> done(count, 0);
        workers.run(count, [&done](std::size_t i) { ++done[i]; });
        EXPECT_EQ(done, std::vector<int>(count, 1)) << threads << " threads";
      }
    }
    std::vector<int> done(9, 0);
    workers.run(9, [&done](std::size_t i) { ++done[i]; });
    EXPECT_EQ(done, std::vector<int>(9, 1)) << threads << " threads, after " << shifts << " shifts";
  }
}

// Off shift threads sleep: of a quarter of a second they use next to nothing.
TEST(WorkersTest, DozeWhenOffShift) {
  Workers workers(3);
  { const Workers::Shift shift(workers); }
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  const std::clock_t before = std::clock();  // processor time of all threads
  std::this_thread::sleep_for(std::chrono::milliseconds(250));
  EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.1);
}

}  // namespace
}  // namespace arena
