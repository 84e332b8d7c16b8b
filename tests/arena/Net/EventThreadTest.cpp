#include "Net/EventThread.h"

#include <gtest/gtest.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <future>
#include <thread>

namespace arena {
namespace {

TEST(EventThreadTest, DealsWithEventsElsewhereBetweenBeginAndEnd) {
  boost::asio::io_context io;
  EventThread thread(io);
  thread.begin();
  std::promise<std::thread::id> where;
  boost::asio::post(io, [&] { where.set_value(std::this_thread::get_id()); });
  EXPECT_NE(where.get_future().get(), std::this_thread::get_id());
  thread.end();
}

TEST(EventThreadTest, LeavesThemAloneOtherwise) {
  boost::asio::io_context io;
  const auto guard = boost::asio::make_work_guard(io);  // like somebody who waits at a port
  EventThread thread(io);
  int done = 0;
  boost::asio::post(io, [&] { ++done; });
  EXPECT_EQ(done, 0);
  EXPECT_EQ(io.poll(), 1u);
  EXPECT_EQ(done, 1);
  thread.begin();
  thread.end();
  boost::asio::post(io, [&] { ++done; });
  EXPECT_EQ(io.poll(), 1u) << "the owner can deal with events after the thread has";
  EXPECT_EQ(done, 2);
}

TEST(EventThreadTest, WhatAHandlerDidHasHappenedAfterTheEnd) {
  boost::asio::io_context io;
  const auto guard = boost::asio::make_work_guard(io);
  EventThread thread(io);
  int begun = 0, ended = 0;  // not atomic: the thread sanitizer sees whether end() is enough
  for (int i = 0; i < 2000; ++i) {
    boost::asio::post(io, [&] {
      ++begun;
      ++ended;
    });
    thread.begin();
    thread.end();
    EXPECT_EQ(begun, ended);
  }
  io.poll();
  EXPECT_EQ(ended, 2000);
}

TEST(EventThreadTest, WaitsForEventsThatAreYetToCome) {
  boost::asio::io_context io;
  EventThread thread(io);
  for (int i = 0; i < 200; ++i) {
    thread.begin();
    std::promise<void> done;
    boost::asio::post(io, [&] { done.set_value(); });
    done.get_future().wait();
    thread.end();
  }
}

TEST(EventThreadTest, CanGoInTheMiddle) {
  boost::asio::io_context io;
  EventThread thread(io);
  thread.begin();
  std::promise<void> done;
  boost::asio::post(io, [&] { done.set_value(); });
  done.get_future().wait();
}

}  // namespace
}  // namespace arena
