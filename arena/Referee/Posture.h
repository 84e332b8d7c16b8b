#ifndef QUOLNARIS_REFEREE_POSTURE_H_
#define QUOLNARIS_REFEREE_POSTURE_H_

namespace arena {

// How long a player has been lying or not standing, in cycles of play.
class Posture {
 public:
  // REQUIRES: called once in each cycle of play. `height` and `y` of the torso centre, m.
  void update(double height, double y);
  // Whether the player has been down for longer than the rules allow.
  bool incapable(bool goalie) const;
  // A player stands again only after he has been upright for more than half a second.
  bool standing() const { return notStanding_ == 0; }
  void reset() { *this = Posture(); }

 private:
  int lying_ = 0;
  int notStanding_ = 0;
  int upright_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_REFEREE_POSTURE_H_
