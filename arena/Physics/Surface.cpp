#include "Physics/Surface.h"

#include "Physics/Constants.h"

namespace arena {
namespace {

std::optional<double> mix(const std::optional<double>& first, const std::optional<double>& second) {
  if (first && second) return (*first + *second) / 2.0;
  return first ? first : second;
}

}  // namespace

dSurfaceParameters mixSurfaces(const Surface& first, const Surface& second) {
  dSurfaceParameters result{};
  result.mu = dInfinity;
  if (first.bounce || second.bounce) {
    const Surface::Bounce& a = first.bounce ? *first.bounce : *second.bounce;
    const Surface::Bounce& b = second.bounce ? *second.bounce : *first.bounce;
    result.mode |= dContactBounce;
    result.bounce = (a.restitution + b.restitution) / 2.0;
    result.bounce_vel = (a.minSpeed + b.minSpeed) / 2.0;
  }
  if (const auto erp = mix(first.softErp, second.softErp)) {
    result.mode |= dContactSoftERP;
    result.soft_erp = single(*erp);
  }
  if (const auto cfm = mix(first.softCfm, second.softCfm)) {
    result.mode |= dContactSoftCFM;
    result.soft_cfm = single(*cfm);
  }
  if (const auto slip = mix(first.slip, second.slip)) {
    result.mode |= dContactSlip1 | dContactSlip2;
    result.slip1 = single(*slip);
    result.slip2 = single(*slip);
  }
  return result;
}

}  // namespace arena
