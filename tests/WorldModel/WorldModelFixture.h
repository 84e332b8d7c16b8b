#ifndef QUOLNARIS_TESTS_WORLDMODEL_WORLDMODELFIXTURE_H_
#define QUOLNARIS_TESTS_WORLDMODEL_WORLDMODELFIXTURE_H_

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>

#include "WorldModel/WorldModel.h"
#include "support/ConfigSandbox.h"

// A world model of player 9 with the deployment's configuration.
class WorldModelFixture : public testing::Test {
 protected:
  WorldModelFixture() {
    sandbox.loadDeployment();
    sandbox.set("Agent", "Public", "UniformNumber", "9");
    sandbox.set("Agent", "Public", "TeamName", "Quolnaris");
    restart();
  }

  // A new world model, with the configuration as it is now.
  void restart() { model = std::make_unique<WorldModel>(); }

  void update(const std::string& message) { EXPECT_TRUE(model->update(message)); }

  // A vision message at a game time in play, with these objects.
  static std::string see(const std::string& objects, const std::string& time = "10.00") {
    return "(time (now 99.00))(GS (t " + time + ") (pm PlayOn))(See " + objects + ")";
  }

  // The polar sighting of a point of the camera frame, with many decimals.
  static std::string polar(double x, double y, double z) {
    constexpr double kDegree = 180 / 3.14159265358979323846;
    char text[128];
    std::snprintf(text, sizeof(text), "(pol %.9f %.9f %.9f)", std::sqrt(x * x + y * y + z * z),
                  std::atan2(y, x) * kDegree, std::atan2(z, std::hypot(x, y)) * kDegree);
    return text;
  }

  static void expectNear(const Vector& actual, double x, double y, double z,
                         double tolerance = 1e-5) {
    EXPECT_NEAR(actual.x, x, tolerance);
    EXPECT_NEAR(actual.y, y, tolerance);
    EXPECT_NEAR(actual.z, z, tolerance);
  }

  static void expectIdentity(const Matrix<4, 4>& matrix) {
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) EXPECT_EQ(matrix.get(i, j), i == j ? 1.0 : 0.0);
    }
  }

  support::ConfigSandbox sandbox;
  std::unique_ptr<WorldModel> model;
};

#endif  // QUOLNARIS_TESTS_WORLDMODEL_WORLDMODELFIXTURE_H_
