#ifndef QUOLNARIS_CONNECTION_HANDLER_H_
#define QUOLNARIS_CONNECTION_HANDLER_H_

namespace rcss::net {

// The process-wide state of the socket library. The system needs no start-up of its own, so it
// only says that it is there.
class Handler {
 public:
  // The one handler, made on first use.
  static Handler& instance();

  bool valid() const { return m_valid; }

  Handler(const Handler&) = delete;
  Handler& operator=(const Handler&) = delete;

 private:
  Handler() = default;

  bool m_valid = true;
};

}  // namespace rcss::net

#endif  // QUOLNARIS_CONNECTION_HANDLER_H_
