#ifndef QUOLNARIS_WORLDMODEL_FLAG_H_
#define QUOLNARIS_WORLDMODEL_FLAG_H_

#include <string>

#include "WorldModel/Object.h"

// A landmark: corner flag or goal post. RealPosition holds where it stands.
class Flag : public Object {
 public:
  void setFlagName(const std::string& name) { flagName = name; }
  const std::string& getFlagName() const { return flagName; }

  std::string flagName;  // nobody fills it: landmarks are told apart by their index
};

#endif  // QUOLNARIS_WORLDMODEL_FLAG_H_
