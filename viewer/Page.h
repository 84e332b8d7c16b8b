#ifndef QUOLNARIS_VIEWER_PAGE_H_
#define QUOLNARIS_VIEWER_PAGE_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Film.h"

namespace viewer {

// The page as it was built into this program, one HTML document. Empty if there was no node to
// build it with.
std::string_view builtPage();

// What a player believed: its place in the page ("left/7") and the packed bytes.
using NamedMind = std::pair<std::string, std::string>;

// The page with a film inside, to be opened without a server. REQUIRES: the page is not empty, and
// the film is sealed.
std::string pageWithFilm(const Film& film, const std::vector<NamedMind>& minds);

std::string base64(std::string_view bytes);

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_PAGE_H_
