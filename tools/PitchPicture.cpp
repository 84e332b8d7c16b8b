#include "PitchPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace {

using Point = PitchPicture::Point;
using Path = PitchPicture::Path;
using Pen = PitchPicture::Pen;

// The pitch of the league, metres.
constexpr double kLength = 30.0;
constexpr double kWidth = 20.0;
constexpr double kPenaltyDepth = 1.8;
constexpr double kPenaltyWidth = 6.0;
constexpr double kGoalDepth = 0.6;
constexpr double kGoalWidth = 2.1;
constexpr double kCircle = 2.0;
constexpr double kWall = 24.0;  // nothing gets farther from the centre

// The picture, pixels.
constexpr double kScale = 40.0;   // per metre
constexpr double kBorder = 1.3;   // metres around the pitch, at least
constexpr double kAround = 0.7;   // metres around anything farther out
constexpr double kHeader = 84.0;  // title and subtitle
constexpr double kFooter = 72.0;  // legend and scale
constexpr double kMargin = 28.0;
constexpr double kWordsRoom = 4;   // metres that the words of a mark may take
constexpr double kMinStep = 0.01;  // metres; shorter steps of a path are not drawn

bool isPosition(const Point& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", value);
  return text;
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return result;
}

// Writes shapes given in metres into a document in pixels.
class Canvas {
 public:
  Canvas(const Point& lowerLeft, const Point& upperRight)
      : width_((upperRight.x - lowerLeft.x) * kScale),
        height_((upperRight.y - lowerLeft.y) * kScale + kHeader + kFooter),
        originX_(-lowerLeft.x * kScale),
        originY_(kHeader + upperRight.y * kScale) {
    out_ = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + number(width_) + "\" height=\"" +
           number(height_) + "\" viewBox=\"0 0 " + number(width_) + " " + number(height_) +
           "\" font-family=\"Helvetica, Arial, DejaVu Sans, sans-serif\">\n";
  }

  double width() const { return width_; }
  double height() const { return height_; }

  void raw(const std::string& element) { out_ += element + "\n"; }

  // Coordinates in metres.
  void rectangle(Point corner, Point opposite, const std::string& style) {
    const double left = std::min(x(corner), x(opposite));
    const double top = std::min(y(corner), y(opposite));
    box(left, top, std::fabs(x(opposite) - x(corner)), std::fabs(y(opposite) - y(corner)), style);
  }
  void line(Point from, Point to, const std::string& style) {
    pixelLine(x(from), y(from), x(to), y(to), style);
  }
  void circle(Point centre, double radiusPixels, const std::string& style) {
    pixelCircle(x(centre), y(centre), radiusPixels, style);
  }
  void path(const Path& points, const std::string& style) {
    std::string data;
    bool down = false;
    Point last;
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (!isPosition(points[i])) {
        down = false;
        continue;
      }
      const bool isLast = i + 1 == points.size();
      if (down && !isLast && std::hypot(points[i].x - last.x, points[i].y - last.y) < kMinStep) {
        continue;
      }
      data += (down ? "L" : "M") + number(x(points[i])) + " " + number(y(points[i]));
      last = points[i];
      down = true;
    }
    if (data.empty()) return;
    raw("<path d=\"" + data +
        "\" fill=\"none\" stroke-linejoin=\"round\" stroke-linecap=\"round\" " + style + "/>");
  }

  // Coordinates in pixels from the upper left corner.
  void box(double left, double top, double w, double h, const std::string& style) {
    raw("<rect x=\"" + number(left) + "\" y=\"" + number(top) + "\" width=\"" + number(w) +
        "\" height=\"" + number(h) + "\" " + style + "/>");
  }
  void pixelLine(double x1, double y1, double x2, double y2, const std::string& style) {
    raw("<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) +
        "\" y2=\"" + number(y2) + "\" " + style + "/>");
  }
  void pixelCircle(double cx, double cy, double radius, const std::string& style) {
    raw("<circle cx=\"" + number(cx) + "\" cy=\"" + number(cy) + "\" r=\"" + number(radius) +
        "\" " + style + "/>");
  }
  void text(double left, double baseline, const std::string& words, const std::string& style) {
    raw("<text x=\"" + number(left) + "\" y=\"" + number(baseline) + "\" " + style + ">" +
        escaped(words) + "</text>");
  }
  void textAt(Point point, double dx, double dy, const std::string& words,
              const std::string& style) {
    text(x(point) + dx, y(point) + dy, words, style);
  }

  std::string finish() { return out_ + "</svg>\n"; }

 private:
  double x(const Point& point) const { return originX_ + point.x * kScale; }
  double y(const Point& point) const { return originY_ - point.y * kScale; }

  double width_, height_, originX_, originY_;
  std::string out_;
};

std::string stroke(const Pen& pen) {
  std::string style =
      "stroke=\"" + escaped(pen.colour) + "\" stroke-width=\"" + number(pen.width) + "\"";
  if (pen.opacity < 1) style += " stroke-opacity=\"" + number(pen.opacity) + "\"";
  if (pen.dashed) style += " stroke-dasharray=\"7 5\"";
  return style;
}

std::string fill(const Pen& pen) {
  std::string style = "fill=\"" + escaped(pen.colour) + "\"";
  if (pen.opacity < 1) style += " fill-opacity=\"" + number(pen.opacity) + "\"";
  return style;
}

void drawPitch(Canvas& canvas) {
  const std::string lines = "fill=\"none\" stroke=\"#ffffff\" stroke-width=\"3\"";
  const double halfLength = kLength / 2;
  const double halfWidth = kWidth / 2;
  canvas.rectangle({-halfLength, -halfWidth}, {halfLength, halfWidth}, lines);
  canvas.line({0, -halfWidth}, {0, halfWidth}, lines);
  canvas.circle({0, 0}, kCircle * kScale, lines);
  canvas.circle({0, 0}, 3.5, "fill=\"#ffffff\"");
  for (const double end : {-1.0, 1.0}) {
    canvas.rectangle({end * (halfLength - kPenaltyDepth), -kPenaltyWidth / 2},
                     {end * halfLength, kPenaltyWidth / 2}, lines);
    canvas.rectangle(
        {end * halfLength, -kGoalWidth / 2}, {end * (halfLength + kGoalDepth), kGoalWidth / 2},
        "fill=\"#ffffff\" fill-opacity=\"0.45\" stroke=\"#ffffff\" stroke-width=\"3\"");
  }
}

void drawScale(Canvas& canvas) {
  constexpr double kMetres = 5;
  const std::string pen = "stroke=\"#37474f\" stroke-width=\"2\"";
  const double right = canvas.width() - kMargin;
  const double left = right - kMetres * kScale;
  const double baseline = canvas.height() - 24;
  canvas.pixelLine(left, baseline, right, baseline, pen);
  for (int metre = 0; metre <= kMetres; ++metre) {
    const double tick = left + metre * kScale;
    canvas.pixelLine(tick, baseline - (metre % 5 == 0 ? 8 : 5), tick, baseline, pen);
  }
  canvas.text((left + right) / 2, baseline - 14, "5 m",
              "font-size=\"16\" fill=\"#37474f\" text-anchor=\"middle\"");
}

}  // namespace

PitchPicture::PitchPicture(std::string title, std::string subtitle)
    : title_(std::move(title)),
      subtitle_(std::move(subtitle)),
      lowerLeft_{-kLength / 2 - kBorder, -kWidth / 2 - kBorder},
      upperRight_{kLength / 2 + kBorder, kWidth / 2 + kBorder} {}

void PitchPicture::add(Kind kind, Path points, const Pen& pen, const std::string& name) {
  for (const Point& point : points) {
    if (!isPosition(point)) continue;
    const auto shown = [](double coordinate) { return std::clamp(coordinate, -kWall, kWall); };
    lowerLeft_.x = std::min(lowerLeft_.x, shown(point.x - kAround));
    lowerLeft_.y = std::min(lowerLeft_.y, shown(point.y - kAround));
    upperRight_.x = std::max(upperRight_.x, shown(point.x + kAround));
    upperRight_.y = std::max(upperRight_.y, shown(point.y + kAround));
  }
  items_.push_back({kind, std::move(points), pen, name, Label::Above});
}

void PitchPicture::addPath(const Path& points, const Pen& pen, const std::string& name) {
  add(Kind::Path, points, pen, name);
}

void PitchPicture::addDots(const Path& points, const Pen& pen, const std::string& name) {
  add(Kind::Dots, points, pen, name);
}

void PitchPicture::addLinks(const std::vector<std::pair<Point, Point>>& links, const Pen& pen,
                            const std::string& name) {
  Path points;
  for (const auto& [first, second] : links) {
    if (!isPosition(first) || !isPosition(second)) continue;
    points.push_back(first);
    points.push_back(second);
  }
  add(Kind::Links, std::move(points), pen, name);
}

void PitchPicture::addMark(const Point& point, const std::string& colour, const std::string& text,
                           Label label) {
  if (!isPosition(point)) return;
  add(Kind::Mark, {point}, {colour}, text);
  items_.back().label = label;
}

std::string PitchPicture::svg() const {
  Canvas canvas(lowerLeft_, upperRight_);
  canvas.box(0, 0, canvas.width(), canvas.height(), "fill=\"#fafaf7\"");
  canvas.text(kMargin, 40, title_, "font-size=\"26\" font-weight=\"bold\" fill=\"#263238\"");
  canvas.text(kMargin, 68, subtitle_, "font-size=\"17\" fill=\"#546e7a\"");
  canvas.rectangle(lowerLeft_, upperRight_, "fill=\"#7fb685\"");
  drawPitch(canvas);

  // What lies beyond the walls must not reach into title and legend.
  canvas.raw("<clipPath id=\"shown\">");
  canvas.rectangle(lowerLeft_, upperRight_, "");
  canvas.raw("</clipPath>\n<g clip-path=\"url(#shown)\">");
  for (const Item& item : items_) {
    switch (item.kind) {
      case Kind::Path:
        canvas.path(item.points, stroke(item.pen));
        break;
      case Kind::Dots:
        for (const Point& point : item.points) {
          if (isPosition(point)) canvas.circle(point, item.pen.width / 2, fill(item.pen));
        }
        break;
      case Kind::Links:
        for (std::size_t i = 0; i + 1 < item.points.size(); i += 2) {
          canvas.line(item.points[i], item.points[i + 1], stroke(item.pen));
        }
        break;
      case Kind::Mark:
        break;  // above everything else, below
    }
  }
  for (const Item& item : items_) {
    if (item.kind != Kind::Mark) continue;
    const std::string words =
        "font-size=\"15\" paint-order=\"stroke\" stroke=\"#ffffff\" "
        "stroke-width=\"3.5\" stroke-linejoin=\"round\" ";
    canvas.circle(item.points[0], 6, fill(item.pen) + " stroke=\"#ffffff\" stroke-width=\"2\"");
    // Near the right edge the words stand before the dot instead of behind it.
    const bool before = item.points[0].x > upperRight_.x - kWordsRoom;
    canvas.textAt(item.points[0], before ? -8 : 8, item.label == Label::Above ? -9 : 19, item.name,
                  words + fill(item.pen) + (before ? " text-anchor=\"end\"" : ""));
  }

  canvas.raw("</g>");

  double left = kMargin;
  const double middle = canvas.height() - kFooter / 2 + 4;
  for (const Item& item : items_) {
    if (item.kind == Kind::Mark || item.name.empty()) continue;
    if (item.kind == Kind::Dots) {
      canvas.pixelCircle(left + 18, middle - 5, std::max(item.pen.width / 2, 3.0), fill(item.pen));
    } else {
      canvas.pixelLine(left, middle - 5, left + 36, middle - 5, stroke(item.pen));
    }
    canvas.text(left + 46, middle, item.name, "font-size=\"16\" fill=\"#37474f\"");
    left += 76 + 8.6 * static_cast<double>(item.name.size());
  }
  drawScale(canvas);
  return canvas.finish();
}
