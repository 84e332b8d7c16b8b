#include "Connection/handler.h"

namespace rcss::net {

Handler& Handler::instance() {
  static Handler handler;
  return handler;
}

}  // namespace rcss::net
