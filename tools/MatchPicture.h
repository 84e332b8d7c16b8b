#ifndef QUOLNARIS_TOOLS_MATCHPICTURE_H_
#define QUOLNARIS_TOOLS_MATCHPICTURE_H_

#include <limits>
#include <string>

namespace arena {

struct MatchPictureOptions {
  double from = 0;                                      // game time, s
  double to = std::numeric_limits<double>::infinity();  // the same
  bool players = true;                                  // draw their paths
};

// Draws a recorded match as an SVG document: the ball's path, the players' paths in the colours of
// their teams, the goals, the score. Places where something was put elsewhere interrupt its path.
// Throws RecordingError if the file cannot be read as a recording. One that ends too early, because
// the arena was killed say, is drawn as far as it goes.
struct DrawnMatch {
  std::string svg;
  bool complete = true;  // whether the recording has an end
};
DrawnMatch drawMatch(const std::string& path, const MatchPictureOptions& options);

}  // namespace arena

#endif  // QUOLNARIS_TOOLS_MATCHPICTURE_H_
