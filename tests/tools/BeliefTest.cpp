// The program belief: small games made here, whose figures follow by hand, and the shipped ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDirectory.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

const std::string kData = std::string(QUOLNARIS_SOURCE_DIR) + "/tests/data/recordings/";

std::string framed(const std::string& text) {
  const auto length = static_cast<unsigned>(text.size());
  std::string bytes;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    bytes += static_cast<char>((length >> shift) & 0xffU);
  }
  return bytes + text;
}

std::string polar(double x, double y, double z) {
  constexpr double kDegree = 180 / 3.14159265358979323846;
  char text[128];
  std::snprintf(text, sizeof(text), "(pol %.6f %.6f %.6f)", std::sqrt(x * x + y * y + z * z),
                std::atan2(y, x) * kDegree, std::atan2(z, std::hypot(x, y)) * kDegree);
  return text;
}

class BeliefTest : public testing::Test {
 protected:
  struct Result {
    int code;
    std::string out, error;
  };

  Result run(std::vector<std::string> options) {
    options.insert(options.end(), {"--configs", std::string(QUOLNARIS_SOURCE_DIR) + "/Configs"});
    return runPlainly(options);
  }

  Result runPlainly(const std::vector<std::string>& options) {
    support::Process process("belief", directory.path(), options);
    const support::ProcessEnd end = process.wait();
    return {end.code, process.standardOutput(), process.standardError()};
  }

  // A player that stands at (x, y) of its own frame, faces +x and sees both goal posts ahead, the
  // ball at (4, 1), team-mate 3 at (6, 2) and opponent 5 at (8, -2), all of it exactly; 20 visions
  // from 0.06 s on. On the right side the posts ahead are those of the left goal.
  std::string standing(const std::string& side, double x, double y) {
    std::string bytes;
    const auto add = [&](const std::string& frame) { bytes += framed(frame); };
    add("(time (now 1.00))(GS (unum 9) (team " + side +
        ") (sl 1) (sr 0) (t 0.00) (pm BeforeKickOff))");
    const bool right = side == "right";
    for (int i = 1; i <= 20; ++i) {
      char state[64];
      std::snprintf(state, sizeof(state), "(GS (t %.2f) (pm PlayOn))", 0.06 * i);
      const auto post = [&](const char* name, double py) {
        return "(" + std::string(name) + " " + polar(15 - x, py - y, 0.8 - 0.45) + ") ";
      };
      add(state + std::string(i == 5 ? "(hear Quolnaris 0.30 12.5 u07rc04)" : "") + "(See " +
          post(right ? "G1L" : "G1R", right ? -1.05 : 1.05) +
          post(right ? "G2L" : "G2R", right ? 1.05 : -1.05) + "(B " + polar(4 - x, 1 - y, -0.4) +
          ") (P (team Quolnaris) (id 3) (head " + polar(6 - x, 2 - y, 0) +
          ")) (P (team Rivals) (id 5) (head " + polar(8 - x, -2 - y, 0) + ")))");
    }
    return directory.write("game.frames", bytes).string();
  }

  // The truth of that game, in the world's frame.
  std::string truth(bool right, double x, double y) {
    std::string text = "# truth\n1 0.00 BeforeKickOff 0:0 9 9 9\n";
    const double turn = right ? -1 : 1;
    for (int i = 1; i <= 60; ++i) {
      char line[256];
      std::snprintf(
          line, sizeof(line),
          "%d %.2f PlayOn 1:0 %g %g 0.04 | %c9 %g %g 0.4 %g 1 | %c3 %g %g 0.4 0 1 | %c5 %g "
          "%g 0.4 0 1\n",
          i + 1, 0.02 * i, turn * 4, turn, right ? 'R' : 'L', turn * x, turn * y,
          right ? 175.0 : -5.0, right ? 'R' : 'L', turn * 6, turn * 2, right ? 'L' : 'R', turn * 8,
          turn * -2);
      text += line;
    }
    return directory.write("game.truth", text).string();
  }

  // The figures of a line of the summary: mean, median, 95 %, maximum, samples.
  static std::vector<double> figures(const std::string& out, const std::string& name) {
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind(name + " ", 0) != 0) continue;
      std::istringstream rest(line.substr(name.size()));
      std::vector<double> numbers(5);
      std::string unit;
      rest >> numbers[0] >> numbers[1] >> numbers[2] >> numbers[3] >> unit >> numbers[4];
      EXPECT_TRUE(rest) << line;
      return numbers;
    }
    ADD_FAILURE() << "no line " << name << " in\n" << out;
    return std::vector<double>(5, -1);
  }

  static int lines(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
  }

  support::TempDirectory directory;
};

TEST_F(BeliefTest, ExplainsItself) {
  const Result result = runPlainly({"--help"});
  EXPECT_EQ(result.code, 0);
  for (const char* option : {"recording", "--truth", "--svg", "--csv", "--every", "--number",
                             "--team", "--configs", "--quiet"}) {
    EXPECT_THAT(result.out, HasSubstr(option));
  }
}

TEST_F(BeliefTest, TellsTheStoryOfAGame) {
  const Result result = run({standing("left", -2, 1)});
  ASSERT_EQ(result.code, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("21, 20 of them with vision"));
  EXPECT_THAT(result.out, HasSubstr("side         left"));
  EXPECT_THAT(result.out, HasSubstr("9 as configured, 9 as told by the server"));
  EXPECT_THAT(result.out, HasSubstr("own 1, opponents 0"));
  EXPECT_THAT(result.out, HasSubstr("    0.00 s  BeforeKickOff\n    0.06 s  PlayOn\n"));
  EXPECT_THAT(result.out, HasSubstr("    0.30 s to   0.30 s  number 7 in 4 cycles, 1 times"));
  EXPECT_THAT(result.out, Not(HasSubstr("How far off")));
}

TEST_F(BeliefTest, FindsFiguresThatFollowByHand) {
  for (const bool right : {false, true}) {
    const Result result = run({standing(right ? "right" : "left", -2, 1), "--truth",
                               truth(right, -2, 1), "--csv", "out.csv"});
    ASSERT_EQ(result.code, 0) << result.error;
    // The estimate starts at (0, 0), and each vision halves what is missing of sqrt(5).
    std::vector<double> errors;
    double sum = 0;
    for (int i = 1; i <= 20; ++i) {
      errors.push_back(std::sqrt(5.0) / std::pow(2, i));
      sum += errors.back();
    }
    for (const char* name : {"own position", "ball", "team-mates", "opponents"}) {
      const std::vector<double> found = figures(result.out, name);
      EXPECT_NEAR(found[0], sum / 20, 0.0051) << name;
      EXPECT_NEAR(found[1], errors[10], 0.0051) << name;  // rank 10 of 20 from below
      EXPECT_NEAR(found[2], errors[1], 0.0051) << name;   // rank 19
      EXPECT_NEAR(found[3], errors[0], 0.0051) << name;
      EXPECT_EQ(found[4], 20) << name;
    }
    const std::vector<double> heading = figures(result.out, "own heading");
    EXPECT_NEAR(heading[0], 5, 0.0051);
    EXPECT_NEAR(heading[3], 5, 0.0051);
    EXPECT_NEAR(figures(result.out, "  about its mean error")[3], 0, 0.0051);
    EXPECT_NEAR(figures(result.out, "  its distance alone")[3], 0, 0.0051);

    // The same in the file, frame by frame.
    std::istringstream csv(directory.read("out.csv"));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line.rfind("frame,time,mode,landmarks,x,y,heading,", 0), 0u);
    std::getline(csv, line);
    EXPECT_EQ(line, "1,0.00,BeforeKickOff,0,0.0000,0.0000,0.00,,,0,,,,,");
    std::getline(csv, line);
    EXPECT_EQ(line,
              "2,0.06,PlayOn,2,-1.0000,0.5000,0.00,5.0000,0.5000,0,-2.0000,1.0000,-5.00,4.0000,"
              "1.0000");
    int rows = 2;
    while (std::getline(csv, line)) ++rows;
    EXPECT_EQ(rows, 21);
  }
}

TEST_F(BeliefTest, ThePathIsDrawnOverTheTrueOne) {
  const Result result = run(
      {standing("left", -2, 1), "--truth", truth(false, -2, 1), "--svg", "path.svg", "--quiet"});
  ASSERT_EQ(result.code, 0) << result.error;
  const std::string svg = directory.read("path.svg");
  EXPECT_THAT(svg, HasSubstr("Quolnaris 9"));
  EXPECT_THAT(svg, HasSubstr("own path, true"));
  EXPECT_THAT(svg, HasSubstr("own path, believed"));
  EXPECT_THAT(svg, HasSubstr("ball, true"));
  // The believed path starts at (-1, 0.5): 15.3 and 10.8 metres from the upper left corner.
  EXPECT_THAT(svg, HasSubstr("d=\"M612.0 516.0L"));
  EXPECT_THAT(result.out, Not(HasSubstr("Over time")));

  const Result alone = run({standing("left", -2, 1), "--svg", "alone.svg"});
  ASSERT_EQ(alone.code, 0) << alone.error;
  EXPECT_THAT(directory.read("alone.svg"), Not(HasSubstr("own path, true")));
  EXPECT_THAT(directory.read("alone.svg"), HasSubstr("own path, believed"));
}

TEST_F(BeliefTest, TheTableHasARowForEachStepOfTime) {
  const std::string recording = standing("left", -2, 1);
  const auto rows = [&](const std::string& every) {
    const Result result = run({recording, "--every", every});
    EXPECT_EQ(result.code, 0) << result.error;
    const std::size_t table = result.out.find("Over time");
    return lines(result.out.substr(table, result.out.find("\n\n\n", table)));
  };
  EXPECT_EQ(rows("0.06") - rows("5"), 19);
  EXPECT_EQ(rows("0.12") - rows("5"), 9);
}

TEST_F(BeliefTest, NumberAndTeamCanBeGiven) {
  const Result number = run({standing("left", -2, 1), "--number", "4", "--quiet"});
  EXPECT_THAT(number.out, HasSubstr("4 as configured, 9 as told by the server"));
  // To a team of another name everybody is an opponent.
  const Result team =
      run({standing("left", -2, 1), "--truth", truth(false, -2, 1), "--team", "Rivals", "--quiet"});
  EXPECT_THAT(team.out, HasSubstr("team         Rivals"));
  EXPECT_EQ(figures(team.out, "own position")[4], 20);
  EXPECT_THAT(team.out, ContainsRegex("team-mates +no sample"));
}

TEST_F(BeliefTest, FailsGracefully) {
  const auto expectError = [&](const Result& result, const std::string& words) {
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.error, HasSubstr("belief: "));
    EXPECT_THAT(result.error, HasSubstr(words));
  };
  const std::string recording = standing("left", -2, 1);
  expectError(run({"absent.frames"}), "can't open absent.frames");
  expectError(run({directory.write("empty", "").string()}), "holds no frame");
  expectError(run({directory.write("text", "hello, this is no recording").string()}),
              "is this a recording?");
  expectError(run({recording, "--truth", recording}), "is no line of ground truth");
  expectError(run({recording, "--svg", "no/such/place.svg"}), "can't write no/such/place.svg");
  expectError(runPlainly({recording}), "no Configs/Agent.conf");
  EXPECT_NE(run({}).code, 0);
  EXPECT_NE(run({recording, "--number", "12"}).code, 0);
  EXPECT_NE(run({recording, "--every", "0"}).code, 0);
}

TEST_F(BeliefTest, TruthOfAnotherTimeIsNothingToCompare) {
  const std::string path =
      directory.write("other.truth", "1 500.00 PlayOn 0:0 0 0 0 | L9 0 0 0 0 1\n").string();
  const Result result = run({standing("left", -2, 1), "--truth", path, "--svg", "a.svg"});
  EXPECT_EQ(result.code, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("nothing to compare"));
}

TEST_F(BeliefTest, TheShippedGamesStayWithinTheirFigures) {
  const struct {
    const char* frames;
    const char* truth;
    const char* side;
    double position, heading;  // medians at most
  } kGames[] = {{"match-a-left-10", "match-a", "left", 1.5, 10},
                {"match-b-right-10", "match-b", "right", 1.0, 6},
                {"solo-c-left-9", "solo-c", "left", 1.0, 6}};
  for (const auto& game : kGames) {
    const Result result = run({kData + game.frames + ".frames.gz", "--truth",
                               kData + game.truth + ".truth.gz", "--svg", "game.svg"});
    ASSERT_EQ(result.code, 0) << result.error;
    EXPECT_THAT(result.out, HasSubstr("side         " + std::string(game.side)));
    EXPECT_LT(figures(result.out, "own position")[1], game.position) << game.frames;
    EXPECT_LT(figures(result.out, "own heading")[1], game.heading) << game.frames;
    EXPECT_LT(figures(result.out, "  its distance alone")[1], 0.05) << game.frames;
    EXPECT_THAT(directory.read("game.svg"), HasSubstr("</svg>"));
  }
}

}  // namespace
