#ifndef QUOLNARIS_TOOLS_MOTIONRECORD_H_
#define QUOLNARIS_TOOLS_MOTIONRECORD_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What one motion of the robot did, cycle by cycle, and the figures that sum it up.
//
// Positions are metres in the frame of its own team (opponent's goal at +x, y to the left),
// headings degrees from +x, positive to the left. Time is in cycles of 20 ms from the start of the
// motion.

struct MotionPoint {
  double x = 0;
  double y = 0;
  double z = 0;
};

// The body as a stick figure: points of the torso's frame (x forward, y left, z up), turned upright
// and without the heading, metres from the torso's centre.
struct StickFigure {
  MotionPoint head;
  // By side, 0 left and 1 right: shoulder, elbow, hand; hip, knee, ankle, heel, toe.
  MotionPoint arm[2][3];
  MotionPoint leg[2][5];
};

struct MotionSample {
  int cycle = 0;
  MotionPoint torso;    // where the robot is; the height is above the ground where it is known
  double heading = 0;   // degrees, -180 to 180
  double tilt = 0;      // of the torso from upright, degrees
  bool result = false;  // the arbiter said that the motion may be left
  bool ended = false;   // the motion is complete, for motions that have an end
  std::optional<MotionPoint> ball;  // where the server tells it
  std::optional<StickFigure> figure;
};

// The figures of a whole motion.
struct MotionSummary {
  double seconds = 0;
  int results = 0;          // cycles in which the arbiter said that the motion may be left
  int cyclesToEnd = -1;     // until the motion was complete; -1 for never
  double distance = 0;      // metres from start to end
  double forward = 0;       // the same along the heading at the start
  double left = 0;          // and across it
  double forwardSpeed = 0;  // metres per second along the body's own axes, after the lead
  double leftSpeed = 0;
  double turned = 0;    // degrees from start to end, whole turns counted
  double turnRate = 0;  // degrees per second, after the lead
  int falls = 0;
  int firstFall = -1;        // cycle; -1 for none
  double endTilt = 0;        // degrees
  double ballDistance = 0;   // metres that the ball ended from where it was; 0 if not told
  double ballDirection = 0;  // degrees from the heading at the start
};

// Counts as lying from 60 degrees of tilt on, and as upright again below 30.
constexpr double kLyingTilt = 60;
constexpr double kUprightTilt = 30;

// `lead`: cycles at the start that the speeds leave out (the stance, the ramp). The speeds end with
// the first fall or with the end of the motion, whichever comes first.
MotionSummary summarize(const std::vector<MotionSample>& samples, int lead);

// Heading differences brought into -180 to 180.
double wrapDegrees(double angle);

// The torso's orientation, integrated from its turning rates. The player's own belief is no measure
// here: it drops what it has integrated while it sees no line of the pitch.
class TorsoOrientation {
 public:
  // Upright with this heading.
  void setUpright(double heading);

  // One cycle of turning at these rates about the torso's own axes (x forward, y left, z up),
  // degrees per second.
  void turn(double x, double y, double z);

  // A point or direction of the torso's frame, with the axes of the pitch.
  MotionPoint toPitch(const MotionPoint& p) const;
  // The same with the robot's heading taken out: x ahead, y left, z up.
  MotionPoint toUpright(const MotionPoint& p) const;

  // Of the torso's up axis from the vertical, degrees.
  double tilt() const;
  // Degrees; a robot that lies points nowhere and keeps the heading of the time before.
  double heading() const { return heading_; }

 private:
  double r_[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};  // torso to pitch
  double heading_ = 0;
};

// Reads a term "(name a b ...)" of a percept message: its first numbers, as many as asked for.
// Nothing if the term or a number is missing.
std::optional<std::vector<double>> readTerm(std::string_view message, std::string_view name,
                                            std::size_t count);

// One line per sample, under a line with the names of the columns.
std::string traceCsv(const std::vector<MotionSample>& samples);

// The columns of a summary, and one line of values; both end with a line end.
std::string summaryHeader();
std::string summaryLine(const std::string& motion, int type, unsigned seed, bool truth,
                        const MotionSummary& summary);

#endif  // QUOLNARIS_TOOLS_MOTIONRECORD_H_
