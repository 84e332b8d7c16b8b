#ifndef QUOLNARIS_VIEWER_MONITORCLIENT_H_
#define QUOLNARIS_VIEWER_MONITORCLIENT_H_

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Net/FramedConnection.h"

namespace viewer {

// Keeps a connection to a monitor port: tries again for ever, whenever the server is not there or
// goes away.
class MonitorClient {
 public:
  struct Callbacks {
    std::function<void()> connected;
    std::function<void(const std::string& message)> message;
    // The connection ended, or could not be made; once for each time that it was there or sought.
    std::function<void(const std::string& reason)> lost;
  };

  MonitorClient(boost::asio::io_context& io, std::string host, std::string port,
                Callbacks callbacks);
  ~MonitorClient();

  void start();
  // Sends a command; false if nobody is there to take it.
  bool send(std::string_view command);

 private:
  using Tcp = boost::asio::ip::tcp;

  void attach(Tcp::socket socket);
  void onEvent();
  void onLost(const std::string& reason);

  boost::asio::io_context& io_;
  std::string host_;
  std::string port_;
  Callbacks callbacks_;
  Tcp::resolver resolver_;
  boost::asio::steady_timer timer_;
  std::shared_ptr<arena::FramedConnection> connection_;
  bool toldLost_ = false;
};

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_MONITORCLIENT_H_
