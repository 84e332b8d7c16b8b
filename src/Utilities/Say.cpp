#include "Utilities/Say.h"

#include <cstddef>

AdvancedAgent* Say::advancedAgent = nullptr;

namespace {

char characterAt(const std::string& text, std::size_t position) {
  return position < text.size() ? text[position] : '\0';
}

bool tellsFall(const std::string& text) {
  return characterAt(text, 6) == 'F';
}

}  // namespace

Say::Say() {
  for (int i = 0; i < 10; ++i) place[i] = i + 2;
}

int Say::changeCharToTime(const std::string& hear) {
  time = 0;
  for (std::size_t i = 1; i <= 5; ++i) time = time * 10 + (characterAt(hear, i) - '0');
  return time;
}

const char* Say::talk(const std::string& hear) const {
  return tellsFall(hear) ? "F" : "S";
}

bool Say::isFall(const std::string& hear) {
  fall = tellsFall(hear);
  return fall;
}

void Say::calculatePlace(const std::string& hear) {
  // A byte beyond ASCII is a negative number.
  for (std::size_t i = 6; i <= 15; ++i)
    place[i - 6] = characterAt(hear, i);  // NOLINT(bugprone-signed-char-misuse)
}

void Say::setPlace(const int* p) {
  for (int i = 0; i < 11; ++i) place[i] = p[i];
}
