#include "Percepts/GamePercept.h"

#include "Percepts/PerceptText.h"

namespace arena {

void writeTime(float time, std::string& text) {
  text += "(time (now ";
  appendReal(text, time);
  text += "))";
}

void writeGameState(const GameState& game, const Shirt* shirt, std::string& text) {
  text += "(GS ";
  if (shirt != nullptr) {
    text += "(unum ";
    appendInteger(text, shirt->number);
    text += shirt->side == Side::Left ? ") (team left) " : ") (team right) ";
  }
  text += "(sl ";
  appendInteger(text, game.score[0]);
  text += ") (sr ";
  appendInteger(text, game.score[1]);
  text += ") (t ";
  appendReal(text, game.time);
  text += ") (pm ";
  text += nameOf(game.mode);
  text += "))";
}

}  // namespace arena
