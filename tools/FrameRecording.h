#ifndef QUOLNARIS_TOOLS_FRAMERECORDING_H_
#define QUOLNARIS_TOOLS_FRAMERECORDING_H_

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Reads recordings of what the server sent to a player, and the ground truth recorded beside them.
// Knows nothing of the player. Every file may be plain or compressed by gzip.
//
// A recording (*.frames) is the stream as it came over the wire, frame by frame (FramedLink.h). A
// truth file (*.truth) is text with a line for each cycle of the server; see readTruth.

// A file that can't be read or is not what it should be; the text names the file and the place.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The longest frame that the link takes, in bytes of text.
constexpr std::size_t kLongestFrame = 16380;

// One robot in a line of truth. World frame: left goal at x = -15, y to the left of the left team.
struct TrueRobot {
  char side = '?';  // 'L', 'R', or '?' for one that has not joined a team
  int number = 0;
  double x = 0, y = 0, z = 0;  // torso, metres
  double heading = 0;          // degrees, 0 along +x, counter-clockwise positive
  double up = 0;               // z of the torso's up axis; 1 is upright
};

// One cycle of the server, as it truly was.
struct TruthLine {
  double time = 0;  // game time, seconds
  std::string mode;
  std::string score;  // "left:right"
  double ballX = 0, ballY = 0, ballZ = 0;
  std::vector<TrueRobot> robots;

  // The robot of that side ('L' or 'R') and number, or null.
  const TrueRobot* find(char side, int number) const;
};

// The whole file, uncompressed. Throws RecordingError.
std::string readFile(const std::string& path);

// The texts of all frames. Throws RecordingError for a file that ends within a frame, or a frame
// longer than the link takes.
std::vector<std::string> readRecording(const std::string& path);
std::vector<std::string> parseRecording(std::string_view bytes, const std::string& name);

// All lines but comments ("#") and empty ones. The form of a line is
//   INDEX TIME MODE SCORE BALLX BALLY BALLZ {| SIDENUMBER X Y Z HEADING UP}
// Throws RecordingError for a line of another form.
std::vector<TruthLine> readTruth(const std::string& path);
std::vector<TruthLine> parseTruth(std::string_view text, const std::string& name);

#endif  // QUOLNARIS_TOOLS_FRAMERECORDING_H_
