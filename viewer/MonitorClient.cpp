#include "MonitorClient.h"

#include <boost/asio/connect.hpp>
#include <chrono>

namespace viewer {

namespace {

constexpr std::chrono::milliseconds kPause{500};  // between two attempts
// A full message of 22 robots has some 100 kB.
constexpr arena::FramedConnection::Limits kLimits{.frameLength = std::size_t{4} << 20,
                                                  .queue = 64,
                                                  .queueBytes = std::size_t{8} << 20,
                                                  .unsent = std::size_t{64} << 10};

}  // namespace

MonitorClient::MonitorClient(boost::asio::io_context& io, std::string host, std::string port,
                             Callbacks callbacks)
    : io_(io),
      host_(std::move(host)),
      port_(std::move(port)),
      callbacks_(std::move(callbacks)),
      resolver_(io),
      timer_(io) {}

MonitorClient::~MonitorClient() {
  if (connection_) connection_->close();
}

void MonitorClient::start() {
  resolver_.async_resolve(
      host_, port_,
      [this](const boost::system::error_code& error, const Tcp::resolver::results_type& found) {
        if (error == boost::asio::error::operation_aborted) return;
        if (error) return onLost(error.message());
        auto socket = std::make_shared<Tcp::socket>(io_);
        boost::asio::async_connect(
            *socket, found,
            [this, socket](const boost::system::error_code& failure, const Tcp::endpoint&) {
              if (failure == boost::asio::error::operation_aborted) return;
              if (failure) return onLost(failure.message());
              attach(std::move(*socket));
            });
      });
}

void MonitorClient::attach(Tcp::socket socket) {
  connection_ = std::make_shared<arena::FramedConnection>(std::move(socket), kLimits);
  toldLost_ = false;
  callbacks_.connected();
  connection_->start([this] { onEvent(); });
  connection_->send("(init)");
}

void MonitorClient::onEvent() {
  const std::shared_ptr<arena::FramedConnection> connection = connection_;
  if (!connection) return;
  while (connection->waiting() > 0) callbacks_.message(connection->take());
  if (connection->ended()) {
    connection->close();
    connection_.reset();
    onLost(connection->reason().empty() ? "the server has closed the connection"
                                        : connection->reason());
  }
}

void MonitorClient::onLost(const std::string& reason) {
  if (!toldLost_) callbacks_.lost(reason);
  toldLost_ = true;
  timer_.expires_after(kPause);
  timer_.async_wait([this](const boost::system::error_code& error) {
    if (!error) start();
  });
}

bool MonitorClient::send(std::string_view command) {
  return connection_ && !connection_->ended() && connection_->send(command);
}

}  // namespace viewer
