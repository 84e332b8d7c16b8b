#ifndef QUOLNARIS_VIEWER_WEBSERVER_H_
#define QUOLNARIS_VIEWER_WEBSERVER_H_

#include <boost/asio/io_context.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace viewer {

// Serves a page and what it asks for, over HTTP, and news over WebSockets (path /socket).
//
// Of requests it believes nothing: they are short or refused, slow ones are cut off, connections
// are limited in number. A request must name this machine as its host, by an address, "localhost"
// or one of the names allowed; a WebSocket must come from a page of this server.
class WebServer {
 public:
  struct Options {
    std::string bind = "127.0.0.1";
    unsigned short port = 8080;          // 0: any free one
    std::vector<std::string> hostNames;  // further names of this machine
  };
  struct Answer {
    unsigned status = 200;
    std::string type = "text/plain; charset=utf-8";
    std::string body;
  };
  struct News {
    std::string bytes;
    bool binary = false;
    // One of many pictures: passed over where the browser is slow. Who is too slow for all else is
    // disconnected.
    bool picture = false;
  };
  struct Callbacks {
    // The answer to a GET of this path, query included.
    std::function<Answer(std::string_view path)> get;
    // What a page is sent when it connects; and what it says, texts of 4 kB at most.
    std::function<std::vector<News>()> greeting;
    std::function<void(std::string_view text)> receive;
  };

  // Opens the port. Throws std::runtime_error if that fails.
  WebServer(boost::asio::io_context& io, const Options& options, Callbacks callbacks);
  ~WebServer();

  unsigned short port() const;
  // To every page that is connected.
  void broadcast(News news);

 private:
  class Core;
  std::shared_ptr<Core> core_;
};

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_WEBSERVER_H_
