#ifndef QUOLNARIS_VIEWER_TRAINERCOMMAND_H_
#define QUOLNARIS_VIEWER_TRAINERCOMMAND_H_

#include <optional>
#include <string>
#include <string_view>

namespace viewer {

// The command of the monitor port that a page asks for by a JSON object such as
//   {"trainer": "kickOff", "side": "Left"}           Left, Right or None
//   {"trainer": "dropBall"}
//   {"trainer": "playMode", "mode": "PlayOn"}
//   {"trainer": "score", "left": 1, "right": 0}
//   {"trainer": "time", "time": 12.5}                s
//   {"trainer": "ball", "x": 1, "y": 2}              m; the ball is put there at rest
//   {"trainer": "player", "side": "Left", "number": 3, "x": 1, "y": 2, "heading": 90}
//                                                    m, degrees from +x; put there upright
//   {"trainer": "kill", "side": "Left", "number": 3}
// None for anything else: nothing that a page sends reaches the port as it is.
std::optional<std::string> trainerCommand(std::string_view json);

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_TRAINERCOMMAND_H_
