#include "Page.h"

#include <cstdint>
#include <stdexcept>

// The document lies in the program as it is.
// clang-format off
asm(
    ".pushsection .rodata\n"
    ".global kViewerPageBegin\n"
    ".global kViewerPageEnd\n"
    "kViewerPageBegin:\n"
    ".incbin \"" QUOLNARIS_PAGE_FILE "\"\n"
    "kViewerPageEnd:\n"
    ".byte 0\n"
    ".popsection\n");
// clang-format on
extern "C" const char kViewerPageBegin[];
extern "C" const char kViewerPageEnd[];

namespace viewer {

namespace {

// Where in the page the film goes.
constexpr std::string_view kPlace = "<!-- film -->";

void appendScript(std::string& text, const std::string& attributes, const std::string& content) {
  text += "<script " + attributes + ">" + content + "</script>\n";
}

}  // namespace

std::string_view builtPage() {
  return {kViewerPageBegin, static_cast<std::size_t>(kViewerPageEnd - kViewerPageBegin)};
}

std::string base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      group = group << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0u);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += i + j > bytes.size() ? '=' : kDigits[group >> (18 - 6 * j) & 63];
    }
  }
  return text;
}

std::string pageWithFilm(const Film& film, const std::vector<NamedMind>& minds) {
  const std::string_view page = builtPage();
  const std::size_t place = page.find(kPlace);
  if (place == std::string_view::npos) throw std::runtime_error("the page has no place for a film");
  std::string names = "[";
  for (const NamedMind& mind : minds) {
    names += (names.size() > 1 ? ",\"" : "\"") + mind.first + "\"";
  }
  std::string text(page.substr(0, place));
  appendScript(text, "type=\"application/json\" id=\"film\"", film.index({{"minds", names + "]"}}));
  for (std::size_t i = film.firstChunk(); i < film.endChunk(); ++i) {
    appendScript(text, "type=\"text/plain\" id=\"chunk/" + std::to_string(i) + "\"",
                 base64(film.chunk(i)));
  }
  for (const NamedMind& mind : minds) {
    appendScript(text, "type=\"text/plain\" id=\"mind/" + mind.first + "\"", base64(mind.second));
  }
  return text.append(page.substr(place + kPlace.size()));
}

}  // namespace viewer
