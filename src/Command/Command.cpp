#include "Command/Command.h"

#include <charconv>

#include "Utilities/Config.h"

namespace {

constexpr int kSignificantDigits = 6;

// Appends `value` as an output stream in its default format would.
void append(std::string& text, float value) {
  char digits[32];
  const auto result = std::to_chars(digits, digits + sizeof digits, static_cast<double>(value),
                                    std::chars_format::general, kSignificantDigits);
  text.append(digits, result.ptr);
}

}  // namespace

void Command::clear() {
  for (std::string* text : {&joint, &initial, &beam, &say, &RSG, &final, &sayp}) text->clear();
}

void Command::addJoint(const std::string& name, float speed) {
  joint += '(';
  joint += name;
  joint += ' ';
  append(joint, speed);
  joint += ')';
}

void Command::setBeam(const Vector& pos) {
  beam = "(beam ";
  append(beam, pos.x);
  beam += ' ';
  append(beam, pos.y);
  beam += ' ';
  append(beam, pos.z);
  beam += ')';
}

void Command::setInitial(const std::string& teamName, int unum) {
  initial = "(init (unum " + std::to_string(unum) + " ) (teamname " + teamName + "))";
}

void Command::addSay(const std::string& text) {
  sayp += text;
}

void Command::setRSG() {
  RSG = "(" + config["Agent"]["NAO"]["Rsg"].asString() + " " +
        std::to_string(config["Agent"]["Public"]["Type"].asInt()) + ")";
}

void Command::setFinalSay() {
  say = "(say " + sayp + ")";
}

void Command::setFinal() {
  setFinalSay();
  final += joint;
  final += initial;
  final += beam;
  if (!sayp.empty()) final += say;
  final += RSG;
}

std::string Command::getFinalSay() {
  setFinalSay();
  return say;
}
