// Whatever bytes arrive: no crash, no access out of bounds (the sanitizers watch), and the belief
// recovers with the next good message.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "FrameRecording.h"
#include "WorldModelFixture.h"

namespace {

constexpr std::size_t kFrameLimit = 16380;

class WorldModelRobustnessTest : public WorldModelFixture {
 protected:
  // A good message is understood, whatever came before.
  void expectAlive() {
    update(
        "(GS (unum 9) (team left) (sl 1) (sr 2) (t 77.50) (pm PlayOn))(HJ (n hj1) (ax 1.50))"
        "(See (B (pol 2.00 0.00 0.00)))");
    EXPECT_EQ(model->gameTime, 77.5f);
    EXPECT_EQ(model->getPlayMode(), PM_PLAY_ON);
    EXPECT_EQ(model->getHeadJoint(1)->getAngle(), 1.5f);
    EXPECT_EQ(model->ball->getLastTimeSeen(), 77.5f);
    EXPECT_EQ(model->ball->getCameraPosition(), Vector(2, 0, 0));
  }
};

TEST_F(WorldModelRobustnessTest, HandMadeNonsense) {
  const std::string zero(1, '\0');
  const std::vector<std::string> messages = {
      "",
      "(",
      ")",
      "()",
      "(a",
      "(a)",
      "((((",
      "))))",
      "( )",
      zero,
      "(" + zero + ")",
      "(GS" + zero + ")",
      "(time)",
      "(GS)",
      "(GS (",
      "(GS ())",
      "(GS (pm))",
      "(GS (team))",
      "(GS (unum))",
      "(GS (t))",
      "(GS u)",
      "(GS (sl",
      "(GS (unum 2147483648))",
      "(GS (t 1e308))",
      "(GYR (n torso) (rt 1e38 -1e38 1e38))",
      "(GYR (n torso) (rt 1e300 1e300 1e300))",
      "(ACC (n torso) (a 1e300 1e300 1e300))",
      "(HJ (n hj2147483647) (ax 1e300))",
      "(HJ (n rlj-2147483648) (ax 1))",
      "(HJ",
      "(HJ (n",
      "(HJ (n rlj1) (ax 1e300))",
      "(FRP (n rf) (c 1e300 1e300 1e300) (f 1e300 1e300 1e300))",
      "(hear)",
      "(hear Quolnaris 1 self )",
      "(hear Quolnaris 1 self \xff\xff\xff\xff\xff\xff\xff)",
      "(See",
      "(See (",
      "(See )",
      "(See ())",
      "(See (B))",
      "(See (P))",
      "(See (P (team) (id) (head)))",
      "(See (P (team X) (id 3) (head)))",
      "(See (P (id 5) (team) (head (pol 1 2 3))))",
      "(See (P (head (pol 1 2 3)) (rlowerarm (pol 1 2 3))))",
      "(See (P))))))",
      "(See (F1L (pol 1e300 1e300 1e300)))",
      "(See (L (pol 0 0 0) (pol 0 0 0)))",
      "(See (B (pol 1e300 1 1)) (F1L (pol 1 1 1)))",
      "(See (F1L (pol 1e30 1 1)) (F2L (pol -1e30 1 1)))",
  };
  for (const std::string& message : messages) {
    restart();
    update("(GS (unum 9) (team left) (t 1.00) (pm PlayOn))");
    update(message);
    update(message);
    SCOPED_TRACE(message);
    expectAlive();
  }
}

TEST_F(WorldModelRobustnessTest, MessagesAsLongAsTheLinkTakes) {
  const auto filled = [](std::string start, const std::string& filler, const std::string& end) {
    while (start.size() + filler.size() + end.size() <= kFrameLimit) start += filler;
    return start + end;
  };
  const std::string deep = std::string(kFrameLimit / 2, '(') + std::string(kFrameLimit / 2, ')');
  const std::vector<std::string> messages = {
      std::string(kFrameLimit, '('),
      std::string(kFrameLimit, ')'),
      std::string(kFrameLimit, 'x'),
      deep,
      "(See " + deep.substr(10, kFrameLimit - 20),
      filled("(See ", "(", ""),
      filled("(See ", "(B (pol 1 2 3)) ", ")"),
      filled("(See ", "(L (pol 1 2 3) (pol 4 5 6)) ", ")"),
      filled("(See (P (team X) (id 3) ", "(head (pol 1 2 3)) ", "))"),
      filled("(See (P (team ", "x", ") (id 3) (head (pol 1 2 3))))"),
      filled("(See (B (pol 1", "0", " 2 3)))"),
      filled("(GS (pm ", "PlayOn", "))"),
      filled("(GS ", "x", ")"),
      filled("(GS ", "(unum 3) ", ")"),
      filled("(GS (t 0.", "3", "))"),
      filled("(hear Quolnaris 1 self ", "u", ")"),
      filled("(hear ", "Quolnaris", " 1 self u07rc04)"),
      filled("(HJ (n ", "h", ") (ax 1))"),
      filled("(HJ (n hj", "1", ") (ax 1))"),
      filled("", "(GYR (n torso) (rt 1 2 3))", ""),
      filled("(time (now ", "9", "))"),
  };
  for (const std::string& message : messages) {
    restart();
    update(message);
    SCOPED_TRACE(message.substr(0, 60));
    expectAlive();
  }
}

TEST_F(WorldModelRobustnessTest, ALongVisionMessageIsReadToItsEnd) {
  std::string objects;
  while (objects.size() < 15000) objects += "(X (pol 1.00 2.00 3.00)) ";
  update(see(objects + "(B (pol 5.00 0.00 0.00))"));
  EXPECT_EQ(model->ball->getCameraPosition(), Vector(5, 0, 0));
}

TEST_F(WorldModelRobustnessTest, ALongPlayerIsReadToItsEnd) {
  std::string parts = "(head (pol 1.00 0.00 0.00))";
  while (parts.size() < 5000) parts += " (tail (pol 1.00 2.00 3.00))";
  model->parse(see("(P (team Rivals) (id 3) " + parts + " (lfoot (pol 5.00 0.00 0.00)))"));
  EXPECT_EQ(model->player[1][2].leftFootPosition, Vector(5, 0, 0));
}

TEST_F(WorldModelRobustnessTest, EveryCutOfARecordedFrame) {
  const std::vector<std::string> frames = readRecording(std::string(QUOLNARIS_SOURCE_DIR) +
                                                        "/tests/data/recordings/"
                                                        "match-a-left-10.frames.gz");
  std::size_t cut = 0;
  for (std::size_t i = 1890; i < 1893; ++i) {  // one of them holds vision
    for (std::size_t length = 0; length <= frames[i].size(); ++length, ++cut) {
      update(frames[i].substr(0, length));
    }
  }
  EXPECT_GT(cut, 3000u);
  expectAlive();
}

TEST_F(WorldModelRobustnessTest, RecordedFramesWithRandomDamage) {
  const std::vector<std::string> frames = readRecording(std::string(QUOLNARIS_SOURCE_DIR) +
                                                        "/tests/data/recordings/"
                                                        "match-b-right-10.frames.gz");
  const std::string letters = "()() 0123456789.-+eEnaifPBFGLlrht";
  std::mt19937 random(4711);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 4000; ++round) {
    std::string frame = frames[below(frames.size())];
    for (std::size_t damages = 1 + below(8); damages > 0; --damages) {
      const std::size_t at = below(frame.size());
      switch (below(4)) {
        case 0:
          frame[at] = letters[below(letters.size())];
          break;
        case 1:
          frame.erase(at, 1 + below(20));
          break;
        case 2:
          frame.insert(at, frame.substr(below(frame.size()), below(40)));
          break;
        default:
          frame[at] = static_cast<char>(below(256));
      }
      if (frame.empty()) frame = "(";
    }
    frame.resize(std::min(frame.size(), kFrameLimit));
    update(frame);
  }
  expectAlive();
  EXPECT_EQ(model->getLegJoint(7, 1)->getName(), "rle7");
}

// A model whose position has become no number stays usable in everything else.
TEST_F(WorldModelRobustnessTest, NotANumberStaysWhereItIs) {
  update("(GS (unum 9) (team left) (t 1.00) (pm PlayOn))");
  model->mySelf->setGlobalPosition(Vector(std::nanf(""), 0, 0));
  update(see("(F1R " + polar(10, 10, 0) + ") (B " + polar(1, 1, 0) + ")"));
  EXPECT_TRUE(std::isnan(model->getAgentPosition().x));
  EXPECT_FALSE(std::isnan(model->getAgentPosition().y));
  EXPECT_FALSE(std::isnan(model->ball->getRelativePosition().x));
  expectAlive();
}

}  // namespace
