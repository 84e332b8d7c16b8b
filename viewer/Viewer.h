#ifndef QUOLNARIS_VIEWER_VIEWER_H_
#define QUOLNARIS_VIEWER_VIEWER_H_

#include <boost/asio/io_context.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Minds.h"
#include "Sources.h"
#include "WebServer.h"

namespace viewer {

// Shows one match to browsers: a recorded one, or one that is running.
//
// Paths: / (the page), /film (its index), /chunk/N, /mind/SIDE/N, and the WebSocket of a live
// match.
class Viewer {
 public:
  // A recorded match. Both must outlive the viewer.
  Viewer(boost::asio::io_context& io, const WebServer::Options& options, const Film& film,
         Minds& minds);
  // A running match at a monitor port; `readOnly`: no commands of a trainer are handed on.
  Viewer(boost::asio::io_context& io, const WebServer::Options& options, const std::string& host,
         const std::string& port, bool readOnly);

  unsigned short port() const { return server_.port(); }

 private:
  const Film& film() const { return live_ ? live_->film() : *film_; }
  std::string index() const;
  std::string statusNews() const;
  WebServer::Answer get(std::string_view path);
  WebServer::Answer getChunk(std::string_view number) const;
  WebServer::Answer getMind(const std::string& player);
  WebServer::Callbacks callbacks();
  void receive(std::string_view text);
  void onCycle(const std::string& picture);
  void onStatus();
  void tellNews();

  const Film* film_ = nullptr;
  Minds* minds_ = nullptr;
  bool readOnly_ = true;
  std::optional<LiveMatch> live_;
  std::size_t toldChunks_ = 0;
  std::size_t toldMarks_ = 0;
  std::string toldHead_;
  WebServer server_;
};

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_VIEWER_H_
