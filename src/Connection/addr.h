#ifndef QUOLNARIS_CONNECTION_ADDR_H_
#define QUOLNARIS_CONNECTION_ADDR_H_

#include <netinet/in.h>

#include <boost/shared_ptr.hpp>
#include <iosfwd>
#include <string>

namespace rcss::net {

class AddrImpl;

// An IPv4 host and port, given and read in host byte order and kept in network byte order. Copies
// share one address: setting one of them sets all.
class Addr {
 public:
  using PortType = in_port_t;
  using HostType = in_addr_t;
  using AddrType = sockaddr_in;

  static constexpr HostType ANY = 0;
  static constexpr HostType BROADCAST = 0xFFFFFFFF;

  explicit Addr(PortType port = 0, HostType host = ANY);
  explicit Addr(const AddrType& addr);

  // Resolves `host`. Throws `HostNotFound` if that fails.
  Addr(PortType port, const std::string& host);

  void setPort(PortType port);

  // Looks up the named service. False if there is none; an empty name also sets errno to 1.
  bool setPort(const std::string& port, const std::string& proto = "tcp");

  void setHost(HostType host);

  // Resolves `host`. False if that fails; an empty name also sets errno to 1.
  bool setHost(const std::string& host);

  const AddrType& getAddr() const;
  PortType getPort() const;
  HostType getHost() const;

  // The dotted address; kept until the host is set anew.
  const std::string& getHostStr() const;

  // The name of the service at this port, or its decimal number if it has none; kept, whatever the
  // protocol asked for later, until the port is set anew.
  const std::string& getPortStr(const std::string& proto = "tcp") const;

 private:
  boost::shared_ptr<AddrImpl> m_impl;
};

// Equality of port and host; the order goes by host, then port.
bool operator==(const Addr& a, const Addr& b);
bool operator!=(const Addr& a, const Addr& b);
bool operator<(const Addr& a, const Addr& b);

// Writes "(port:host)", the port as a number and the host dotted.
std::ostream& operator<<(std::ostream& out, const Addr& addr);

}  // namespace rcss::net

#endif  // QUOLNARIS_CONNECTION_ADDR_H_
