// Surfaces that touch.
#include "Physics/Surface.h"

#include <gtest/gtest.h>
#include <ode/ode.h>

#include <optional>

namespace arena {
namespace {

struct Mix {
  Surface first;
  Surface second;
  std::optional<double> bounce;
  double minSpeed;
  std::optional<double> erp;
  std::optional<double> cfm;
  std::optional<double> slip;
};

class SurfaceTest : public testing::TestWithParam<Mix> {};

TEST_P(SurfaceTest, GivesTheTabledContact) {
  const Mix& m = GetParam();
  for (const dSurfaceParameters& s :
       {mixSurfaces(m.first, m.second), mixSurfaces(m.second, m.first)}) {
    EXPECT_EQ(s.mu, dInfinity);
    EXPECT_EQ((s.mode & dContactBounce) != 0, m.bounce.has_value());
    EXPECT_EQ((s.mode & dContactSoftERP) != 0, m.erp.has_value());
    EXPECT_EQ((s.mode & dContactSoftCFM) != 0, m.cfm.has_value());
    EXPECT_EQ((s.mode & dContactSlip1) != 0, m.slip.has_value());
    EXPECT_EQ((s.mode & dContactSlip2) != 0, m.slip.has_value());
    if (m.bounce) {
      EXPECT_NEAR(s.bounce, *m.bounce, 1e-7);
      EXPECT_NEAR(s.bounce_vel, m.minSpeed, 1e-7);
    }
    EXPECT_NEAR(s.soft_erp, m.erp.value_or(0.0), 1e-7);
    EXPECT_NEAR(s.soft_cfm, m.cfm.value_or(0.0), 1e-8);
    if (m.slip) {
      EXPECT_NEAR(s.slip1, *m.slip, 1e-7);
      EXPECT_NEAR(s.slip2, *m.slip, 1e-7);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Surfaces, SurfaceTest,
    testing::Values(Mix{kRobotSurface, kGroundSurface, {}, 0.0, 0.4, 1e-4, 0.005},
                    Mix{kRobotSurface, kRobotSurface, {}, 0.0, 0.6, 1e-4, 0.005},
                    Mix{kBallSurface, kGroundSurface, 0.8, 0.8, 0.35, 0.05, 0.3025},
                    Mix{kBallSurface, kRobotSurface, 0.8, 0.8, 0.55, 0.02505, 0.3025},
                    Mix{kBallSurface, kWallSurface, 0.8, 1.4, 0.5, 0.05, 0.6},
                    Mix{kRobotSurface, kWallSurface, 0.8, 2.0, 0.6, 1e-4, 0.005}));

}  // namespace
}  // namespace arena
