#include "WebServer.h"

#include <algorithm>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <deque>
#include <set>
#include <stdexcept>

namespace viewer {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using Tcp = asio::ip::tcp;

constexpr std::size_t kMaxConnections = 128;
constexpr std::chrono::seconds kPatience{30};       // for a request, or for an answer to be taken
constexpr std::uint32_t kMaxHeader = 16 * 1024;     // bytes
constexpr std::uint64_t kMaxBody = 1024;            // bytes; no request needs any
constexpr std::size_t kMaxMessage = 4096;           // bytes, of what a page says
constexpr std::size_t kPictureBacklog = 256 << 10;  // bytes unsent, beyond which pictures are left
constexpr std::size_t kMaxBacklog = 16 << 20;       // bytes unsent, beyond which a page is left
constexpr std::string_view kSocketPath = "/socket";

// Everything of a page stands in one file: it may run itself and talk to this server, no more.
constexpr const char* kContentPolicy =
    "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; img-src data: "
    "blob:; "
    "connect-src 'self' ws:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;

std::string_view view(beast::string_view text) {
  return {text.data(), text.size()};
}

// The name of "name:port", "[v6]:port" or either without a port.
std::string_view nameOfHost(std::string_view host) {
  if (host.starts_with("[")) {
    const std::size_t end = host.find(']');
    return end == std::string_view::npos ? std::string_view() : host.substr(1, end - 1);
  }
  return host.substr(0, host.find(':'));
}

Tcp::acceptor acceptorAt(asio::io_context& io, const std::string& bind, unsigned short port) {
  beast::error_code error;
  const asio::ip::address address = asio::ip::make_address(bind, error);
  if (error) throw std::runtime_error("'" + bind + "' is no address to listen at");
  try {
    return Tcp::acceptor(io, Tcp::endpoint(address, port));
  } catch (const beast::system_error& failure) {
    throw std::runtime_error("cannot listen at " + bind + ", port " + std::to_string(port) + ": " +
                             failure.code().message() + "; --port 0 takes any free one");
  }
}

}  // namespace

class WebServer::Core : public std::enable_shared_from_this<Core> {
 public:
  class Page;
  class Visit;

  Core(asio::io_context& io, const Options& options, Callbacks callbacks)
      : names_(options.hostNames),
        callbacks_(std::move(callbacks)),
        acceptor_(acceptorAt(io, options.bind, options.port)),
        pause_(io) {}

  void accept();
  void close();
  unsigned short port() const { return acceptor_.local_endpoint().port(); }
  void broadcast(const std::shared_ptr<const News>& news);

  bool isOwnHost(std::string_view host) const;
  bool isOwnOrigin(const Request& request) const;
  Response answer(const Request& request) const;

  Callbacks& callbacks() { return callbacks_; }
  void enter() { ++connections_; }
  void leave() { --connections_; }
  void add(const std::shared_ptr<Page>& page) { pages_.insert(page); }
  void remove(const std::shared_ptr<Page>& page) { pages_.erase(page); }

 private:
  std::vector<std::string> names_;
  Callbacks callbacks_;
  Tcp::acceptor acceptor_;
  asio::steady_timer pause_;
  std::size_t connections_ = 0;
  std::set<std::shared_ptr<Page>> pages_;
};

// A page's WebSocket.
class WebServer::Core::Page : public std::enable_shared_from_this<Page> {
 public:
  Page(std::shared_ptr<Core> core, beast::tcp_stream stream)
      : core_(std::move(core)), socket_(std::move(stream)) {
    core_->enter();
  }
  ~Page() { core_->leave(); }

  void start(const Request& request) {
    beast::get_lowest_layer(socket_).expires_never();
    socket_.set_option(websocket::stream_base::timeout::suggested(beast::role_type::server));
    socket_.read_message_max(kMaxMessage);
    socket_.async_accept(request, [self = shared_from_this()](beast::error_code error) {
      if (!error) self->onOpen();
    });
  }

  void send(const std::shared_ptr<const News>& news) {
    if (closed_ || (news->picture && backlog_ > kPictureBacklog)) return;
    if (backlog_ > kMaxBacklog) return close();
    backlog_ += news->bytes.size();
    queue_.push_back(news);
    if (queue_.size() == 1) write();
  }

  void close() {
    if (closed_) return;
    closed_ = true;
    core_->remove(shared_from_this());
    beast::get_lowest_layer(socket_).close();
  }

 private:
  void onOpen() {
    core_->add(shared_from_this());
    for (News& news : core_->callbacks().greeting()) {
      send(std::make_shared<const News>(std::move(news)));
    }
    read();
  }

  void read() {
    socket_.async_read(input_, [self = shared_from_this()](beast::error_code error, std::size_t) {
      if (error) return self->close();
      const std::string text = beast::buffers_to_string(self->input_.data());
      self->input_.clear();
      if (self->socket_.got_text()) self->core_->callbacks().receive(text);
      self->read();
    });
  }

  void write() {
    socket_.binary(queue_.front()->binary);
    socket_.async_write(asio::buffer(queue_.front()->bytes),
                        [self = shared_from_this()](beast::error_code error, std::size_t) {
                          if (error) return self->close();
                          self->backlog_ -= self->queue_.front()->bytes.size();
                          self->queue_.pop_front();
                          if (!self->queue_.empty() && !self->closed_) self->write();
                        });
  }

  std::shared_ptr<Core> core_;
  websocket::stream<beast::tcp_stream> socket_;
  beast::flat_buffer input_;
  std::deque<std::shared_ptr<const News>> queue_;
  std::size_t backlog_ = 0;
  bool closed_ = false;
};

// A connection that carries requests.
class WebServer::Core::Visit : public std::enable_shared_from_this<Visit> {
 public:
  Visit(std::shared_ptr<Core> core, Tcp::socket socket)
      : core_(std::move(core)), stream_(std::move(socket)) {
    core_->enter();
  }
  ~Visit() { core_->leave(); }

  void read() {
    parser_.emplace();
    parser_->header_limit(kMaxHeader);
    parser_->body_limit(kMaxBody);
    stream_.expires_after(kPatience);
    http::async_read(stream_, input_, *parser_,
                     [self = shared_from_this()](beast::error_code error, std::size_t) {
                       if (!error) self->onRequest();
                     });
  }

 private:
  void onRequest() {
    const Request& request = parser_->get();
    const bool welcome = core_->isOwnHost(view(request[http::field::host]));
    if (welcome && websocket::is_upgrade(request) && view(request.target()) == kSocketPath &&
        core_->isOwnOrigin(request)) {
      std::make_shared<Page>(core_, std::move(stream_))->start(request);
      return;
    }
    response_ = core_->answer(request);
    response_.prepare_payload();
    stream_.expires_after(kPatience);
    http::async_write(stream_, response_,
                      [self = shared_from_this()](beast::error_code error, std::size_t) {
                        if (error || self->response_.need_eof()) return self->end();
                        self->read();
                      });
  }

  void end() {
    beast::error_code ignored;
    stream_.socket().shutdown(Tcp::socket::shutdown_send, ignored);
  }

  std::shared_ptr<Core> core_;
  beast::tcp_stream stream_;
  beast::flat_buffer input_;
  boost::optional<http::request_parser<http::string_body>> parser_;
  Response response_;
};

void WebServer::Core::accept() {
  acceptor_.async_accept([self = shared_from_this()](beast::error_code error, Tcp::socket socket) {
    if (error == asio::error::operation_aborted) return;
    if (!error && self->connections_ < kMaxConnections) {
      std::make_shared<Visit>(self, std::move(socket))->read();
    }
    if (!error) return self->accept();
    // Out of descriptors, say: that passes.
    self->pause_.expires_after(std::chrono::milliseconds(100));
    self->pause_.async_wait([self](beast::error_code aborted) {
      if (!aborted) self->accept();
    });
  });
}

void WebServer::Core::close() {
  beast::error_code ignored;
  acceptor_.close(ignored);
  pause_.cancel();
  while (!pages_.empty()) (*pages_.begin())->close();
}

void WebServer::Core::broadcast(const std::shared_ptr<const News>& news) {
  // A page that is left while sending drops out of the set.
  const std::vector<std::shared_ptr<Page>> pages(pages_.begin(), pages_.end());
  for (const std::shared_ptr<Page>& page : pages) page->send(news);
}

// Whoever makes a browser take a name of his own for this machine does not get in.
bool WebServer::Core::isOwnHost(std::string_view host) const {
  const std::string name(nameOfHost(host));
  if (name == "localhost" || std::find(names_.begin(), names_.end(), name) != names_.end()) {
    return true;
  }
  beast::error_code error;
  asio::ip::make_address(name, error);
  return !error;
}

bool WebServer::Core::isOwnOrigin(const Request& request) const {
  return view(request[http::field::origin]) == "http://" + std::string(request[http::field::host]);
}

Response WebServer::Core::answer(const Request& request) const {
  Answer answer;
  const bool known = request.method() == http::verb::get || request.method() == http::verb::head;
  if (!isOwnHost(view(request[http::field::host]))) {
    answer = {403, "text/plain; charset=utf-8", "This machine is not known by that name.\n"};
  } else if (view(request.target()) == kSocketPath) {
    answer = {403, "text/plain; charset=utf-8", "Only pages of this server may connect.\n"};
  } else if (!known) {
    answer = {405, "text/plain; charset=utf-8", "Only GET and HEAD are answered.\n"};
  } else {
    answer = callbacks_.get(view(request.target()));
  }
  Response response(static_cast<http::status>(answer.status), request.version());
  response.set(http::field::content_type, answer.type);
  response.set(http::field::cache_control, "no-store");
  response.set("Content-Security-Policy", kContentPolicy);
  response.set("X-Content-Type-Options", "nosniff");
  response.set("Cross-Origin-Resource-Policy", "same-origin");
  response.keep_alive(request.keep_alive() && known);
  if (request.method() != http::verb::head) response.body() = std::move(answer.body);
  return response;
}

WebServer::WebServer(boost::asio::io_context& io, const Options& options, Callbacks callbacks)
    : core_(std::make_shared<Core>(io, options, std::move(callbacks))) {
  core_->accept();
}

WebServer::~WebServer() {
  core_->close();
}

unsigned short WebServer::port() const {
  return core_->port();
}

void WebServer::broadcast(News news) {
  core_->broadcast(std::make_shared<const News>(std::move(news)));
}

}  // namespace viewer
