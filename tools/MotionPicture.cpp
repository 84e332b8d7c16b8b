#include "MotionPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <limits>

namespace {

// Pixels, unless told otherwise.
constexpr double kFigureScale = 150;  // per metre
constexpr double kPathScale = 90;     // per metre, at most
constexpr double kPathSize = 760;     // of the path's longer side, at most
constexpr double kCellWidth = 118;
constexpr double kRowHeight = 258;  // side view, front view and the time
constexpr double kViewHeight = 112;
constexpr int kCellsPerRow = 10;
constexpr double kMargin = 24;
constexpr double kHeader = 66;
constexpr double kDegree = 3.141592653589793 / 180;

constexpr const char* kLeftColour = "#c2410c";
constexpr const char* kRightColour = "#1d4ed8";
constexpr const char* kBodyColour = "#1f2937";
constexpr const char* kGroundColour = "#9ca3af";

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", value);
  return text;
}

std::string line(double x1, double y1, double x2, double y2, const std::string& colour,
                 double width) {
  return "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) +
         "\" y2=\"" + number(y2) + "\" stroke=\"" + colour + "\" stroke-width=\"" + number(width) +
         "\" stroke-linecap=\"round\"/>\n";
}

std::string circle(double x, double y, double radius, const std::string& colour) {
  return "<circle cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"" + number(radius) +
         "\" fill=\"" + colour + "\"/>\n";
}

std::string label(double x, double y, double size, const std::string& anchor,
                  const std::string& text) {
  return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" font-size=\"" + number(size) +
         "\" fill=\"#374151\" text-anchor=\"" + anchor + "\">" + text + "</text>\n";
}

enum class View { Side, Front };

// One stick figure; (x0, ground) is the foot of the torso's plumb line on the ground.
class FigureSketch {
 public:
  FigureSketch(View view, double x0, double ground, double height)
      : view_(view), x0_(x0), ground_(ground), height_(height) {}

  std::string draw(const StickFigure& figure) const {
    // The limbs that are farther from the eye first.
    const bool nearIsLeft = view_ == View::Side;
    std::string out = limbs(figure, nearIsLeft ? 1 : 0);
    const MotionPoint neck = middle(figure.arm[0][0], figure.arm[1][0]);
    const MotionPoint pelvis = middle(figure.leg[0][0], figure.leg[1][0]);
    out += bone(neck, pelvis, kBodyColour, 5);
    out += bone(neck, figure.head, kBodyColour, 3);
    out += circle(x(figure.head), y(figure.head), 0.055 * kFigureScale, kBodyColour);
    return out + limbs(figure, nearIsLeft ? 0 : 1);
  }

 private:
  static MotionPoint middle(const MotionPoint& a, const MotionPoint& b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
  }
  double x(const MotionPoint& p) const {
    // From the left, forward points to the left; from the front, the robot's left is to the right.
    return x0_ + (view_ == View::Side ? -p.x : p.y) * kFigureScale;
  }
  double y(const MotionPoint& p) const { return ground_ - (height_ + p.z) * kFigureScale; }

  std::string bone(const MotionPoint& a, const MotionPoint& b, const char* colour,
                   double width) const {
    return line(x(a), y(a), x(b), y(b), colour, width);
  }

  std::string limbs(const StickFigure& figure, int side) const {
    const char* colour = side == 0 ? kLeftColour : kRightColour;
    const MotionPoint* arm = figure.arm[side];
    const MotionPoint* leg = figure.leg[side];
    // The leg ends with the foot: from the ankle to heel, toe and back.
    return chain({arm, arm + 1, arm + 2}, colour, 2) +
           chain({leg, leg + 1, leg + 2, leg + 3, leg + 4, leg + 2}, colour, 3);
  }

  std::string chain(std::initializer_list<const MotionPoint*> points, const std::string& colour,
                    double width) const {
    std::string out = "<polyline fill=\"none\" stroke=\"" + colour + "\" stroke-width=\"" +
                      number(width) + "\" points=\"";
    for (const MotionPoint* p : points) out += number(x(*p)) + "," + number(y(*p)) + " ";
    return out + "\"/>\n";
  }

  View view_;
  double x0_;
  double ground_;
  double height_;
};

std::string figureCell(const MotionSample& sample, double left, double top) {
  const double middle = left + kCellWidth / 2;
  const double sideGround = top + kViewHeight;
  const double frontGround = top + 2 * kViewHeight + 8;
  std::string out;
  for (double ground : {sideGround, frontGround}) {
    out += line(left + 4, ground, left + kCellWidth - 4, ground, kGroundColour, 1);
  }
  out += FigureSketch(View::Side, middle, sideGround, sample.torso.z).draw(*sample.figure);
  out += FigureSketch(View::Front, middle, frontGround, sample.torso.z).draw(*sample.figure);
  char time[32];
  std::snprintf(time, sizeof(time), "%.2f s", sample.cycle * 0.02);
  return out + label(middle, frontGround + 15, 11, "middle", time);
}

struct Bounds {
  double minX = std::numeric_limits<double>::infinity();
  double minY = minX;
  double maxX = -minX;
  double maxY = -minX;

  void add(const MotionPoint& p) {
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
  }
};

// The path over the ground, with an arrow for the heading every half second.
class PathSketch {
 public:
  explicit PathSketch(const std::vector<MotionSample>& samples) : samples_(samples) {
    for (const MotionSample& sample : samples) {
      bounds_.add(sample.torso);
    }
    ballMoves_ = ballMoves();
    for (const MotionSample& sample : samples) {
      if (ballMoves_ && sample.ball) bounds_.add(*sample.ball);
    }
    bounds_.minX -= 0.4;
    bounds_.minY -= 0.4;
    bounds_.maxX += 0.4;
    bounds_.maxY += 0.4;
    const double longer = std::max(bounds_.maxX - bounds_.minX, bounds_.maxY - bounds_.minY);
    scale_ = std::min(kPathScale, kPathSize / longer);
  }

  double width() const { return (bounds_.maxX - bounds_.minX) * scale_; }
  double height() const { return (bounds_.maxY - bounds_.minY) * scale_; }

  std::string draw(double left, double top) const {
    std::string out = "<g transform=\"translate(" + number(left) + " " + number(top) + ")\">\n";
    out += "<rect width=\"" + number(width()) + "\" height=\"" + number(height()) +
           "\" fill=\"#ecfdf5\" stroke=\"#a7f3d0\"/>\n";
    out += grid();
    out += polyline([](const MotionSample& s) { return &s.torso; }, kBodyColour);
    if (ballMoves_) {
      out += polyline([](const MotionSample& s) { return s.ball ? &*s.ball : nullptr; }, "#d97706");
    }
    for (const MotionSample& sample : samples_) {
      if (sample.cycle % 25 == 0) out += arrow(sample);
    }
    return out + "</g>\n";
  }

 private:
  // A ball that lies still, wherever it lies, is no part of the picture.
  bool ballMoves() const {
    const MotionPoint* first = nullptr;
    for (const MotionSample& sample : samples_) {
      if (!sample.ball) continue;
      if (first == nullptr) first = &*sample.ball;
      if (std::hypot(sample.ball->x - first->x, sample.ball->y - first->y) > 0.05) return true;
    }
    return false;
  }

  double px(double x) const { return (x - bounds_.minX) * scale_; }
  double py(double y) const { return (bounds_.maxY - y) * scale_; }

  std::string grid() const {
    std::string out;
    for (double x = std::ceil(bounds_.minX) + 0.0; x <= bounds_.maxX; x += 1) {
      out += line(px(x), 0, px(x), height(), "#d1fae5", 1);
      out += label(px(x) + 3, height() - 4, 10, "start", number(x) + " m");
    }
    for (double y = std::ceil(bounds_.minY) + 0.0; y <= bounds_.maxY; y += 1) {
      out += line(0, py(y), width(), py(y), "#d1fae5", 1);
      out += label(3, py(y) - 3, 10, "start", number(y) + " m");
    }
    return out;
  }

  template <typename Where>
  std::string polyline(Where where, const std::string& colour) const {
    std::string out =
        "<polyline fill=\"none\" stroke=\"" + colour + "\" stroke-width=\"2\" points=\"";
    for (const MotionSample& sample : samples_) {
      if (const MotionPoint* p = where(sample)) {
        out += number(px(p->x)) + "," + number(py(p->y)) + " ";
      }
    }
    return out + "\"/>\n";
  }

  std::string arrow(const MotionSample& sample) const {
    const double x = px(sample.torso.x);
    const double y = py(sample.torso.y);
    const double c = std::cos(sample.heading * kDegree);
    const double s = std::sin(sample.heading * kDegree);
    const bool lying = sample.tilt > kLyingTilt;
    return circle(x, y, 3, lying ? "#dc2626" : kBodyColour) +
           line(x, y, x + 14 * c, y - 14 * s, lying ? "#dc2626" : "#059669", 1.5);
  }

  const std::vector<MotionSample>& samples_;
  Bounds bounds_;
  double scale_;
  bool ballMoves_;
};

}  // namespace

std::string motionPicture(const std::vector<MotionSample>& samples, const std::string& title,
                          const std::string& subtitle) {
  std::vector<const MotionSample*> drawn;
  for (const MotionSample& sample : samples) {
    if (sample.figure) drawn.push_back(&sample);
  }
  const int rows = (static_cast<int>(drawn.size()) + kCellsPerRow - 1) / kCellsPerRow;
  const double stripHeight = rows * kRowHeight;
  double width = kCellsPerRow * kCellWidth + 2 * kMargin;
  double height = kHeader + stripHeight + 2 * kMargin;

  std::string body =
      label(kMargin, 30, 20, "start", title) + label(kMargin, 52, 13, "start", subtitle);
  body += label(width - kMargin, 30, 12, "end",
                "side view from the left, front view below; left limbs orange, right limbs blue");
  for (std::size_t i = 0; i < drawn.size(); ++i) {
    const int column = static_cast<int>(i) % kCellsPerRow;
    const int row = static_cast<int>(i) / kCellsPerRow;
    body += figureCell(*drawn[i], kMargin + column * kCellWidth, kHeader + row * kRowHeight);
  }
  if (!samples.empty()) {
    const PathSketch path(samples);
    body += path.draw(kMargin, kHeader + stripHeight + kMargin);
    height += path.height() + kMargin;
    width = std::max(width, path.width() + 2 * kMargin);
  }
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + number(width) + "\" height=\"" +
         number(height) +
         "\" font-family=\"Helvetica, Arial, DejaVu Sans, sans-serif\">\n<rect width=\"100%\" "
         "height=\"100%\" fill=\"white\"/>\n" +
         body + "</svg>\n";
}
