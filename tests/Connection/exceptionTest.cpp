#include "Connection/exception.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <type_traits>

namespace {

using namespace rcss::net;

template <typename Exception>
class ExceptionTest : public testing::Test {};

using Exceptions =
    testing::Types<HostNotFound, OpenErr, BindErr, ListenErr, AcceptErr, GetNameErr, ConnectErr>;
TYPED_TEST_SUITE(ExceptionTest, Exceptions);

TYPED_TEST(ExceptionTest, CarriesAnErrorNumberAndItsText) {
  const TypeParam exception(ECONNREFUSED);
  EXPECT_EQ(exception.err(), ECONNREFUSED);
  EXPECT_STREQ(exception.what(), std::strerror(ECONNREFUSED));
}

TYPED_TEST(ExceptionTest, IsAStandardException) {
  EXPECT_TRUE((std::is_base_of_v<std::exception, TypeParam>));
  EXPECT_THROW(throw TypeParam(1), std::exception);
}

}  // namespace
