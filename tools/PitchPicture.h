#ifndef QUOLNARIS_TOOLS_PITCHPICTURE_H_
#define QUOLNARIS_TOOLS_PITCHPICTURE_H_

#include <string>
#include <utility>
#include <vector>

// Draws the pitch seen from above, with paths and marks on it, as an SVG document.
//
// All positions are metres in the pitch frame: origin at the centre, x to the right, y up. What
// lies outside the pitch widens the picture up to the walls around it; positions that are no
// numbers interrupt a path.
class PitchPicture {
 public:
  struct Point {
    double x = 0;
    double y = 0;
  };
  using Path = std::vector<Point>;

  // Colour as SVG takes it, width in pixels (a metre is 40), opacity 0 to 1.
  struct Pen {
    std::string colour;
    double width = 2;
    double opacity = 1;
    bool dashed = false;
  };

  PitchPicture(std::string title, std::string subtitle);

  // A line through the points. With a name it stands in the legend.
  void addPath(const Path& points, const Pen& pen, const std::string& name = "");
  // Separate dots; the width is their diameter.
  void addDots(const Path& points, const Pen& pen, const std::string& name = "");
  // Straight connections, each from `first` to `second`.
  void addLinks(const std::vector<std::pair<Point, Point>>& links, const Pen& pen,
                const std::string& name = "");
  // A ringed dot with a text above or below it; one that is no position is left out.
  enum class Label { Above, Below };
  void addMark(const Point& point, const std::string& colour, const std::string& text,
               Label label = Label::Above);

  // The whole document.
  std::string svg() const;

 private:
  enum class Kind { Path, Dots, Links, Mark };
  struct Item {
    Kind kind;
    Path points;  // of links: first, second, first, second ...
    Pen pen;
    std::string name;
    Label label = Label::Above;
  };

  void add(Kind kind, Path points, const Pen& pen, const std::string& name);

  std::string title_;
  std::string subtitle_;
  std::vector<Item> items_;
  Point lowerLeft_;  // of what is shown
  Point upperRight_;
};

#endif  // QUOLNARIS_TOOLS_PITCHPICTURE_H_
