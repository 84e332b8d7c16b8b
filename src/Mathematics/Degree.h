#ifndef QUOLNARIS_MATHEMATICS_DEGREE_H_
#define QUOLNARIS_MATHEMATICS_DEGREE_H_

/// Trigonometry in degrees and the angle-wrapping rules of the player. Angles are degrees, in and
/// out, in float; the arithmetic between is double unless a function says otherwise.
class Degree {
 public:
  static float sin(float a);
  static float cos(float a);
  static float tan(float a);
  static float cot(float a);

  static float arcSin(float x);
  static float arcCos(float x);
  static float arcTan(float x);

  /// atan(1 / x), the quotient in float: negative for a negative x, with no shift into the second
  /// quadrant.
  static float arcCot(float x);

  /// Direction of the point (x, y), -180 to 180.
  static float arcTan2(float y, float x);

  /// The same as `arcTan2`, argument for argument, and no arc cotangent. A caller that is written
  /// against it would be turned by the difference.
  static float arcCot2(float y, float x);

  /// `a` by whole turns brought into -180 to 180, both ends included.
  static float normalizeAngle(float a);

  /// `a` by whole turns brought into 0 to 360, the upper end excluded.
  static float absoluteAngle(float a);

  /// The turn from `b` to `a`, -180 to 180.
  static float getDeltaAngle(float a, float b);

  /// Whether `c` lies on the arc that runs from `a` upward to `b`, ends included. If `a` equals
  /// `b`, whether `c` equals them.
  static bool isBetween(float a, float b, float c);
};

#endif  // QUOLNARIS_MATHEMATICS_DEGREE_H_
