#ifndef QUOLNARIS_TESTS_SUPPORT_LOOPBACK_H_
#define QUOLNARIS_TESTS_SUPPORT_LOOPBACK_H_

#include "Connection/addr.h"

namespace support {

inline constexpr rcss::net::Addr::HostType kLoopback = 0x7F000001;  // 127.0.0.1

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_LOOPBACK_H_
