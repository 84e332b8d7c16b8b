#include "Connection/addr.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cerrno>
#include <cstring>
#include <ostream>
#include <utility>

#include "Connection/exception.h"
#include "Connection/handler.h"

namespace rcss::net {

class AddrImpl {
 public:
  explicit AddrImpl(const Addr::AddrType& addr) : m_handler(Handler::instance()), m_addr(addr) {}

  bool setPort(const std::string& port, const std::string& proto) {
    if (!m_handler.valid() || port.empty()) return fail(EPERM);
    const servent* const service = getservbyname(port.c_str(), proto.c_str());
    if (service == nullptr) return fail(errno);
    m_addr.sin_port = static_cast<in_port_t>(service->s_port);
    m_port_name.clear();
    return true;
  }

  bool setHost(const std::string& host) {
    if (!m_handler.valid() || host.empty()) return fail(EPERM);
    return resolve(host);
  }

  bool resolve(const std::string& host) {
    const hostent* const entry = gethostbyname(host.c_str());
    if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr) {
      m_error = h_errno;
      m_errno = errno;
      return false;
    }
    std::memcpy(&m_addr.sin_addr, entry->h_addr_list[0], sizeof m_addr.sin_addr);
    m_host_name.clear();
    return true;
  }

  Handler& m_handler;
  Addr::AddrType m_addr;
  std::string m_host_name;  // empty until it is asked for
  std::string m_port_name;
  int m_error = 0;  // the resolver's error number of the last failure
  int m_errno = 0;  // the system's

 private:
  bool fail(int error) {
    errno = error;
    m_errno = error;
    return false;
  }
};

namespace {

Addr::AddrType makeAddr(Addr::PortType port, Addr::HostType host) {
  Addr::AddrType addr = {};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(port);
  addr.sin_addr.s_addr = htonl(host);
  return addr;
}

}  // namespace

Addr::Addr(PortType port, HostType host) : m_impl(new AddrImpl(makeAddr(port, host))) {}

Addr::Addr(const AddrType& addr) : m_impl(new AddrImpl(addr)) {}

Addr::Addr(PortType port, const std::string& host) : m_impl(new AddrImpl(makeAddr(port, ANY))) {
  if (!m_impl->resolve(host)) throw HostNotFound(h_errno);
}

void Addr::setPort(PortType port) {
  m_impl->m_addr.sin_port = htons(port);
  m_impl->m_port_name.clear();
}

bool Addr::setPort(const std::string& port, const std::string& proto) {
  return m_impl->setPort(port, proto);
}

void Addr::setHost(HostType host) {
  m_impl->m_addr.sin_addr.s_addr = htonl(host);
  m_impl->m_host_name.clear();
}

bool Addr::setHost(const std::string& host) {
  return m_impl->setHost(host);
}

const Addr::AddrType& Addr::getAddr() const {
  return m_impl->m_addr;
}

Addr::PortType Addr::getPort() const {
  return ntohs(m_impl->m_addr.sin_port);
}

Addr::HostType Addr::getHost() const {
  return ntohl(m_impl->m_addr.sin_addr.s_addr);
}

const std::string& Addr::getHostStr() const {
  std::string& name = m_impl->m_host_name;
  if (name.empty()) name = inet_ntoa(m_impl->m_addr.sin_addr);
  return name;
}

const std::string& Addr::getPortStr(const std::string& proto) const {
  std::string& name = m_impl->m_port_name;
  if (name.empty()) {
    const servent* const service = getservbyport(m_impl->m_addr.sin_port, proto.c_str());
    name = service != nullptr ? service->s_name : std::to_string(getPort());
  }
  return name;
}

bool operator==(const Addr& a, const Addr& b) {
  return a.getPort() == b.getPort() && a.getHost() == b.getHost();
}

bool operator!=(const Addr& a, const Addr& b) {
  return !(a == b);
}

bool operator<(const Addr& a, const Addr& b) {
  return std::pair(a.getHost(), a.getPort()) < std::pair(b.getHost(), b.getPort());
}

std::ostream& operator<<(std::ostream& out, const Addr& addr) {
  return out << "(" << addr.getPort() << ":" << addr.getHostStr() << ")";
}

}  // namespace rcss::net
