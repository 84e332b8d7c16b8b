#ifndef QUOLNARIS_COMMAND_COMMAND_H_
#define QUOLNARIS_COMMAND_COMMAND_H_

#include <string>

#include "Mathematics/Vector.h"

// Builds the text of one effector message. Per message: any of the set and add operations, then
// `setFinal`, `getFinal`, and `clear`. The final text grows by appending, so without a `clear`
// between two `setFinal` the old text is sent again.
//
// Numbers have up to six significant digits, and an exponent where that is shorter: -1.5, 1e-05.
// Reads the configuration: `Agent`, groups `NAO` (Rsg) and `Public` (Type).
class Command {
 public:
  // Empties everything.
  void clear();

  // Adds the speed of a hinge, named as the server names its effector.
  void addJoint(const std::string& name, float speed);

  // Asks for the place x, y in metres and the heading z in degrees, in the server's frame.
  void setBeam(const Vector& pos);

  void setInitial(const std::string& teamName, int unum);

  // Adds to the text that is said; two calls give one longer text.
  void addSay(const std::string& text);

  // Asks for the robot: the scene command of the configuration, with the robot type behind it.
  void setRSG();

  // Builds the say term, also from an empty text.
  void setFinalSay();

  // Appends to the final text: hinges, init, beam, say term if something is said, scene.
  void setFinal();

  const std::string& getFinal() const { return final; }

  // `setFinalSay()`, and a copy of the say term.
  std::string getFinalSay();

 private:
  std::string joint;
  std::string initial;
  std::string beam;
  std::string say;   // the say term
  std::string sayp;  // the text in it
  std::string RSG;
  std::string final;
};

#endif  // QUOLNARIS_COMMAND_COMMAND_H_
