#include "Connection/handler.h"

#include <gtest/gtest.h>

namespace {

using rcss::net::Handler;

TEST(HandlerTest, IsOneValidInstance) {
  EXPECT_TRUE(Handler::instance().valid());
  EXPECT_EQ(&Handler::instance(), &Handler::instance());
}

}  // namespace
