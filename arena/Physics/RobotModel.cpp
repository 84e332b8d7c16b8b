#include "Physics/RobotModel.h"
#include "Common/Units.h"

#include <cassert>
#include <string_view>

namespace arena {
namespace {

constexpr double kCommonMaxSpeed = 351.77 * kRadiansPerDegree;
constexpr double kFootMass = 0.2;
constexpr double kFootLength = 0.16;
// The toe is half as thick as the foot, so it takes half of the mass that its length would.
constexpr double kToeMassShare = 0.5;

// The numbers in which the types differ.
struct TypeSpec {
  double hipX;
  double thighZ;
  double ankleZ;
  double elbowY;
  double maxSpeedAnklePitch;
  double maxSpeedAnkleRoll;
  double toeLength;  // 0: no toe
};

constexpr double kHipZ = -0.115;
// Both components of the hips' slanted axes. The engine makes their length 1; what it starts from
// is the league's own number of four digits, down to the last bit.
constexpr double kSlant = 0.7071;

constexpr std::array<TypeSpec, kRobotTypeCount> kTypes{{
    {0.055, -0.04, -0.055, 0.07, kCommonMaxSpeed, kCommonMaxSpeed, 0.0},
    {0.055, -0.05832, -0.07332, 0.10664, kCommonMaxSpeed, kCommonMaxSpeed, 0.0},
    {0.055, -0.04, -0.055, 0.07, 8.80667, 3.47234, 0.0},
    {0.072954143, -0.067868424, -0.082868424, 0.125736848, kCommonMaxSpeed, kCommonMaxSpeed, 0.0},
    {0.055, -0.04, -0.055, 0.07, kCommonMaxSpeed, kCommonMaxSpeed, 0.035517656},
}};

// Builds the tables of one type. `f` is +1 for the right side and -1 for the left one.
class Builder {
 public:
  explicit Builder(int type) : spec_(kTypes.at(type)) {
    model_.type = type;
    addHead();
    for (double f : {1.0, -1.0}) addArm(f);
    for (double f : {1.0, -1.0}) addLeg(f);
  }

  RobotModel take() { return std::move(model_); }

 private:
  static Triple plus(const Triple& a, const Triple& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
  }

  static std::string prefixOf(double f) {
    if (f == 0.0) return "";
    return f > 0.0 ? "r" : "l";
  }

  // The body of the right side, or its mirror image.
  static Body sided(double f, Body right) {
    if (f >= 0.0) return right;
    const int distance =
        right <= Body::RightLowerArm
            ? static_cast<int>(Body::LeftShoulder) - static_cast<int>(Body::RightShoulder)
            : static_cast<int>(Body::LeftHip1) - static_cast<int>(Body::RightHip1);
    return static_cast<Body>(static_cast<int>(right) + distance);
  }

  int addBody(double f, Body body, int parent, const Triple& offset, ShapeKind shape,
              const Triple& size, double mass, bool collider, const std::string& sensor = "") {
    const Triple from = parent < 0 ? Triple{0.0, 0.0, 0.0} : model_.bodies[parent].position;
    model_.bodies.push_back({sided(f, body), parent, plus(from, offset), shape, size, mass,
                             collider, sensor.empty() ? "" : prefixOf(f) + sensor});
    return static_cast<int>(model_.bodies.size()) - 1;
  }

  // A small sphere without a collider, as between two hinges with crossing axes.
  int addBead(double f, Body body, int parent, const Triple& offset, double mass) {
    return addBody(f, body, parent, offset, ShapeKind::Sphere, {0.01, 0.0, 0.0}, mass, false);
  }

  // `letter` is "h", "a" or "l"; the anchor is given relative to the child body; degrees.
  void addJoint(double f, const std::string& letter, int number, int child, const Triple& anchor,
                const Triple& axis, double lowDeg, double highDeg,
                double maxSpeed = kCommonMaxSpeed) {
    const std::string digit = std::to_string(number);
    model_.joints.push_back({prefixOf(f) + letter + "e" + digit, prefixOf(f) + letter + "j" + digit,
                             *limbOf(model_.bodies[child].body), child, model_.bodies[child].parent,
                             plus(model_.bodies[child].position, anchor), axis,
                             lowDeg * kRadiansPerDegree, highDeg * kRadiansPerDegree, maxSpeed});
  }

  // Limits given for the right side; on the left one they are mirrored.
  void addMirroredJoint(double f, const std::string& letter, int number, int child,
                        const Triple& anchor, const Triple& axis, double lowDeg, double highDeg,
                        double maxSpeed = kCommonMaxSpeed) {
    const bool right = f > 0.0;
    addJoint(f, letter, number, child, anchor, axis, right ? lowDeg : -highDeg,
             right ? highDeg : -lowDeg, maxSpeed);
  }

  void addHead() {
    const int torso = addBody(0.0, Body::Torso, -1, {0.0, 0.0, 0.0}, ShapeKind::Box,
                              {0.1, 0.1, 0.18}, 1.2171, true);
    const int neck = addBody(0.0, Body::Neck, torso, {0.0, 0.0, 0.09}, ShapeKind::Capsule,
                             {0.015, 0.08, 0.0}, 0.05, true);
    addJoint(0.0, "h", 1, neck, {0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, -120.0, 120.0);
    const int head = addBody(0.0, Body::Head, neck, {0.0, 0.0, 0.065}, ShapeKind::Sphere,
                             {0.065, 0.0, 0.0}, 0.35, true);
    addJoint(0.0, "h", 2, head, {0.0, 0.0, -0.005}, {1.0, 0.0, 0.0}, -45.0, 45.0);
  }

  void addArm(double f) {
    const int shoulder = addBead(f, Body::RightShoulder, 0, {f * 0.098, 0.0, 0.075}, 0.07);
    addJoint(f, "a", 1, shoulder, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, -120.0, 120.0);
    const int upper = addBody(f, Body::RightUpperArm, shoulder, {f * 0.01, 0.02, 0.0},
                              ShapeKind::Box, {0.07, 0.08, 0.06}, 0.15, true);
    addMirroredJoint(f, "a", 2, upper, {-f * 0.01, -0.02, 0.0}, {0.0, 0.0, 1.0}, -95.0, 1.0);
    const int elbow = addBead(f, Body::RightElbow, upper, {-f * 0.01, spec_.elbowY, 0.009}, 0.035);
    addJoint(f, "a", 3, elbow, {0.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, -120.0, 120.0);
    const int lower = addBody(f, Body::RightLowerArm, elbow, {0.0, 0.05, 0.0}, ShapeKind::Box,
                              {0.05, 0.11, 0.05}, 0.2, true);
    addMirroredJoint(f, "a", 4, lower, {0.0, -0.05, 0.0}, {0.0, 0.0, 1.0}, -1.0, 90.0);
  }

  void addLeg(double f) {
    const int hip1 = addBead(f, Body::RightHip1, 0, {f * spec_.hipX, -0.01, kHipZ}, 0.09);
    addJoint(f, "l", 1, hip1, {0.0, 0.0, 0.0}, {-kSlant, 0.0, f * kSlant}, -90.0, 1.0);
    const int hip2 = addBead(f, Body::RightHip2, hip1, {0.0, 0.0, 0.0}, 0.125);
    addMirroredJoint(f, "l", 2, hip2, {0.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, -45.0, 25.0);
    const int thigh = addBody(f, Body::RightThigh, hip2, {0.0, 0.01, spec_.thighZ}, ShapeKind::Box,
                              {0.07, 0.07, 0.14}, 0.275, true);
    addJoint(f, "l", 3, thigh, {0.0, -0.01, -spec_.thighZ}, {1.0, 0.0, 0.0}, -25.0, 100.0);
    const int shank = addBody(f, Body::RightShank, thigh, {0.0, 0.005, -0.125}, ShapeKind::Box,
                              {0.08, 0.07, 0.11}, 0.225, true);
    addJoint(f, "l", 4, shank, {0.0, -0.01, 0.045}, {1.0, 0.0, 0.0}, -130.0, 1.0);
    const int ankle = addBead(f, Body::RightAnkle, shank, {0.0, -0.01, spec_.ankleZ}, 0.125);
    addJoint(f, "l", 5, ankle, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, -45.0, 75.0,
             spec_.maxSpeedAnklePitch);

    // A foot with a toe is shorter by the toe and keeps its heel 0.05 m behind the ankle.
    const double toeMass = spec_.toeLength / kFootLength * kToeMassShare * kFootMass;
    const double footLength = kFootLength - spec_.toeLength;
    const double footY = footLength / 2.0 - 0.05;
    const int foot = addBody(f, Body::RightFoot, ankle, {0.0, footY, -0.04}, ShapeKind::Box,
                             {0.08, footLength, 0.02}, kFootMass - toeMass, true, "f");
    addMirroredJoint(f, "l", 6, foot, {0.0, -0.03, 0.035}, {0.0, 1.0, 0.0}, -25.0, 45.0,
                     spec_.maxSpeedAnkleRoll);
    if (spec_.toeLength <= 0.0) return;
    const int toe =
        addBody(f, Body::RightToe, foot, {0.0, footLength / 2.0 + spec_.toeLength / 2.0, -0.005},
                ShapeKind::Box, {0.08, spec_.toeLength, 0.01}, toeMass, true, "f1");
    addJoint(f, "l", 7, toe, {0.0, -spec_.toeLength / 2.0, -0.005}, {1.0, 0.0, 0.0}, -1.0, 70.0);
  }

  const TypeSpec& spec_;
  RobotModel model_;
};

}  // namespace

int RobotModel::jointByEffector(std::string_view effector) const {
  for (std::size_t i = 0; i < joints.size(); ++i) {
    if (joints[i].effector == effector) return static_cast<int>(i);
  }
  return -1;
}

int RobotModel::indexOf(Body body) const {
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    if (bodies[i].body == body) return static_cast<int>(i);
  }
  return -1;
}

const RobotModel& robotModel(int type) {
  assert(type >= 0 && type < kRobotTypeCount);
  static const std::array<RobotModel, kRobotTypeCount> models{Builder(0).take(), Builder(1).take(),
                                                              Builder(2).take(), Builder(3).take(),
                                                              Builder(4).take()};
  return models[type];
}

}  // namespace arena
