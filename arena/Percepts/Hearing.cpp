#include "Percepts/Hearing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Common/Units.h"
#include "Percepts/PerceptText.h"

namespace arena {
namespace {

constexpr std::size_t kMaxLength = 20;
constexpr double kRange = 50.0;  // m
constexpr int kCostOfMessage = 2;
constexpr int kRecovery = 1;  // per cycle

void writeHead(const std::string& team, double time, std::string& text) {
  text += "(hear ";
  text += team;
  text += ' ';
  appendReal(text, time);
  text += ' ';
}

}  // namespace

bool isSpeakable(std::string_view text) {
  return !text.empty() && text.size() <= kMaxLength &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return c > ' ' && c <= '~' && c != '(' && c != ')'; });
}

void Hearing::nextCycle() {
  own_.reset();
  for (Channel* channel : {&mates_, &opponents_}) {
    channel->message.reset();
    channel->capacity = std::min(kCapacity, channel->capacity + kRecovery);
  }
}

void Hearing::hear(const Utterance& utterance, int self, Side side, const Eigen::Vector3d& place) {
  if (side == Side::None) return;
  if (utterance.speaker == self) {
    own_ = Message{side, 0.0, utterance.text};
    return;
  }
  const Eigen::Vector3d way = utterance.place - place;
  if (way.norm() > kRange) return;
  Channel& channel = utterance.side == side ? mates_ : opponents_;
  if (channel.capacity < kCostOfMessage) return;
  channel.capacity -= kCostOfMessage;
  const double turn = side == Side::Right ? -1.0 : 1.0;
  const double direction = std::atan2(turn * way.y(), turn * way.x()) * kDegreesPerRadian;
  channel.message = Message{utterance.side, direction, utterance.text};
}

void Hearing::changeSides() {
  for (auto* message : {&own_, &mates_.message, &opponents_.message}) {
    if (*message) (*message)->side = opponent((*message)->side);
  }
}

void Hearing::write(const std::array<std::string, 2>& teamNames, double time,
                    std::string& text) const {
  if (own_) {
    writeHead(teamNames[index(own_->side)], time, text);
    text += "self ";
    text += own_->text;
    text += ')';
  }
  for (const Channel* channel : {&mates_, &opponents_}) {
    if (!channel->message) continue;
    writeHead(teamNames[index(channel->message->side)], time, text);
    appendReal(text, channel->message->direction);
    text += ' ';
    text += channel->message->text;
    text += ')';
  }
}

}  // namespace arena
