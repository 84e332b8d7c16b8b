#ifndef QUOLNARIS_PHYSICS_SURFACE_H_
#define QUOLNARIS_PHYSICS_SURFACE_H_

#include <ode/ode.h>

#include <optional>

namespace arena {

// What a collider's skin contributes to a contact. Friction is unlimited for every surface.
struct Surface {
  struct Bounce {
    double restitution;  // 0 to 1
    double minSpeed;     // m/s; slower impacts do not bounce
  };

  std::optional<Bounce> bounce;
  std::optional<double> softErp;
  std::optional<double> softCfm;
  std::optional<double> slip;  // m/s per newton, both tangential directions
};

inline constexpr Surface kGroundSurface{std::nullopt, 0.2, std::nullopt, 0.005};
inline constexpr Surface kRobotSurface{std::nullopt, 0.6, 1e-4, 0.005};
inline constexpr Surface kBallSurface{Surface::Bounce{0.8, 0.8}, 0.5, 0.05, 0.6};
// Goals and outer walls.
inline constexpr Surface kWallSurface{Surface::Bounce{0.8, 2.0}, std::nullopt, std::nullopt,
                                      std::nullopt};

// The contact between two surfaces, in the engine's terms. Each property that neither side uses is
// off, one that a single side uses has that value, one that both use has their arithmetic mean.
dSurfaceParameters mixSurfaces(const Surface& first, const Surface& second);

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_SURFACE_H_
