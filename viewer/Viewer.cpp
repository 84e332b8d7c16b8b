#include "Viewer.h"

#include <charconv>
#include <nlohmann/json.hpp>

#include "TrainerCommand.h"

namespace viewer {

namespace {

using nlohmann::json;

constexpr const char* kHtml = "text/html; charset=utf-8";
constexpr const char* kJson = "application/json";
constexpr const char* kBytes = "application/octet-stream";

WebServer::Answer notFound() {
  return {404, "text/plain; charset=utf-8", "There is nothing here.\n"};
}

std::string quoted(const std::string& text) {
  return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string list(const std::vector<std::string>& texts) {
  return json(texts).dump(-1, ' ', false, json::error_handler_t::replace);
}

const char* truth(bool value) {
  return value ? "true" : "false";
}

}  // namespace

Viewer::Viewer(boost::asio::io_context& io, const WebServer::Options& options, const Film& film,
               Minds& minds)
    : film_(&film), minds_(&minds), server_(io, options, callbacks()) {}

Viewer::Viewer(boost::asio::io_context& io, const WebServer::Options& options,
               const std::string& host, const std::string& port, bool readOnly)
    : readOnly_(readOnly), server_(io, options, callbacks()) {
  live_.emplace(io, host, port,
                LiveMatch::Callbacks{[this](const std::string& picture) { onCycle(picture); },
                                     [this] { onStatus(); }});
  live_->start();
}

WebServer::Callbacks Viewer::callbacks() {
  return {[this](std::string_view path) { return get(path); },
          [this]() -> std::vector<WebServer::News> {
            return {{"{\"news\":\"film\",\"film\":" + index() + "}"}};
          },
          [this](std::string_view text) { receive(text); }};
}

std::string Viewer::index() const {
  std::vector<std::pair<std::string, std::string>> extra = {
      {"live", truth(live_.has_value())},
      {"trainer", truth(!readOnly_)},
      {"minds", minds_ ? list(minds_->players()) : "[]"}};
  if (live_) {
    extra.emplace_back("connected", truth(live_->connected()));
    extra.emplace_back("status", quoted(live_->status()));
  }
  return film().index(extra);
}

WebServer::Answer Viewer::get(std::string_view path) {
  constexpr std::string_view kChunk = "/chunk/";
  constexpr std::string_view kMind = "/mind/";
  path = path.substr(0, path.find('?'));
  if (path == "/") {
    if (builtPage().empty()) {
      return {503, "text/plain; charset=utf-8",
              "This program was built without its page: node and npm were missing.\n"};
    }
    return {200, kHtml, std::string(builtPage())};
  }
  if (path == "/film") return {200, kJson, index()};
  if (path.starts_with(kChunk)) return getChunk(path.substr(kChunk.size()));
  if (path.starts_with(kMind)) return getMind(std::string(path.substr(kMind.size())));
  return notFound();
}

WebServer::Answer Viewer::getChunk(std::string_view number) const {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  const bool whole = error == std::errc() && end == number.data() + number.size();
  if (!whole || value < film().firstChunk() || value >= film().endChunk()) return notFound();
  return {200, kBytes, film().chunk(value)};
}

WebServer::Answer Viewer::getMind(const std::string& player) {
  if (!minds_) return notFound();
  const Minds::State state = minds_->ask(player);
  switch (state.kind) {
    case Minds::State::Kind::Working:
      return {202, "text/plain; charset=utf-8", "being brought back"};
    case Minds::State::Kind::Ready:
      return {200, kBytes, state.content};
    case Minds::State::Kind::Failed:
      return {500, "text/plain; charset=utf-8", state.content};
    default:
      return notFound();
  }
}

void Viewer::receive(std::string_view text) {
  if (readOnly_ || !live_) return;
  if (const auto command = trainerCommand(text)) live_->command(*command);
}

std::string Viewer::statusNews() const {
  const PitchMeasures& pitch = film().pitch();
  const json news = {{"news", "status"},          {"connected", live_->connected()},
                     {"status", live_->status()}, {"teams", film().teams()},
                     {"length", pitch.length},    {"width", pitch.width}};
  return news.dump(-1, ' ', false, json::error_handler_t::replace);
}

// What has been added to the film since the last time.
void Viewer::tellNews() {
  if (const std::string head = statusNews(); head != toldHead_) {
    toldHead_ = head;
    server_.broadcast({head});
  }
  for (toldChunks_ = std::max(toldChunks_, film().firstChunk()); toldChunks_ < film().endChunk();
       ++toldChunks_) {
    server_.broadcast({"{\"news\":\"chunk\",\"chunk\":" + film().chunkEntry(toldChunks_) + "}"});
  }
  for (; toldMarks_ < film().marks().size(); ++toldMarks_) {
    server_.broadcast(
        {"{\"news\":\"mark\",\"mark\":" + Film::markEntry(film().marks()[toldMarks_]) + "}"});
  }
}

// A picture is the number of the cycle, 4 bytes with the lowest first, and a chunk of it alone.
void Viewer::onCycle(const std::string& picture) {
  tellNews();
  const std::size_t cycle = film().cycles() - 1;
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(cycle >> shift & 0xff);
  server_.broadcast({bytes + picture, true, true});
}

void Viewer::onStatus() {
  tellNews();
}

}  // namespace viewer
