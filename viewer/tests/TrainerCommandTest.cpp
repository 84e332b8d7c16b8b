#include "TrainerCommand.h"

#include <gtest/gtest.h>

namespace viewer {
namespace {

TEST(TrainerCommandTest, SaysWhatThePortUnderstands) {
  const struct {
    const char* request;
    const char* command;
  } cases[] = {
      {R"({"trainer":"kickOff","side":"Left"})", "(kickOff Left)"},
      {R"({"trainer":"kickOff","side":"None"})", "(kickOff None)"},
      {R"({"trainer":"dropBall"})", "(dropBall)"},
      {R"({"trainer":"playMode","mode":"corner_kick_left"})", "(playMode corner_kick_left)"},
      {R"({"trainer":"score","left":2,"right":1})", "(score (left 2)(right 1))"},
      {R"({"trainer":"time","time":12.5})", "(time 12.50)"},
      {R"({"trainer":"ball","x":1,"y":-2.5})", "(ball (pos 1.000 -2.500 0.042)(vel 0 0 0))"},
      {R"({"trainer":"player","side":"Right","number":7,"x":1,"y":2,"heading":180})",
       "(agent (unum 7)(team Right)(move 1.000 2.000 0.40 90.0))"},
      {R"({"trainer":"kill","side":"Left","number":3})", "(kill (unum 3)(team Left))"},
  };
  for (const auto& [request, command] : cases) EXPECT_EQ(trainerCommand(request), command);
}

TEST(TrainerCommandTest, NothingElseReachesThePort) {
  const char* const requests[] = {
      "",
      "(killsim)",
      "[]",
      "null",
      R"({"trainer":"killsim"})",
      R"({"trainer":"kickOff","side":"Left)(killsim"})",
      R"({"trainer":"kill","side":"None","number":3})",
      R"({"trainer":"kill","side":"Left","number":0})",
      R"({"trainer":"kill","side":"Left","number":12})",
      R"({"trainer":"kill","side":"Left"})",
      R"({"trainer":"playMode","mode":"PlayOn)(killsim"})",
      R"({"trainer":"ball","x":1e300,"y":0})",
      R"({"trainer":"ball","x":"1","y":0})",
      R"({"trainer":"time","time":-1})",
      R"({"trainer":"score","left":1})",
      R"({"trainer":7})",
  };
  for (const char* const request : requests) EXPECT_EQ(trainerCommand(request), std::nullopt);
}

}  // namespace
}  // namespace viewer
