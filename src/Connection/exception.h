#ifndef QUOLNARIS_CONNECTION_EXCEPTION_H_
#define QUOLNARIS_CONNECTION_EXCEPTION_H_

#include <cstring>
#include <exception>

namespace rcss::net {

// What the seven exceptions of the socket library have in common: an error number and its text.
class NetException : public std::exception {
 public:
  explicit NetException(int err) noexcept : m_err(err) {}

  int err() const noexcept { return m_err; }

  // The system's text for the number. REQUIRES one thread.
  const char* what() const noexcept override { return std::strerror(m_err); }

 private:
  int m_err;
};

// A host name that can't be resolved; the only one that is ever thrown. Its number is the
// resolver's (h_errno), which `what()` does not really translate.
class HostNotFound : public NetException {
 public:
  using NetException::NetException;
};

class OpenErr : public NetException {
 public:
  using NetException::NetException;
};

class BindErr : public NetException {
 public:
  using NetException::NetException;
};

class ListenErr : public NetException {
 public:
  using NetException::NetException;
};

class AcceptErr : public NetException {
 public:
  using NetException::NetException;
};

class GetNameErr : public NetException {
 public:
  using NetException::NetException;
};

class ConnectErr : public NetException {
 public:
  using NetException::NetException;
};

}  // namespace rcss::net

#endif  // QUOLNARIS_CONNECTION_EXCEPTION_H_
