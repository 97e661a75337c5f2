#include "report/map_overlay.h"

#include <algorithm>
#include <cmath>

namespace report {
namespace {

// Of what comes just short of the threshold; a few steps, so that pictures stay small.
constexpr double kMostOfFaint = 0.45;
constexpr int kFaintSteps = 4;

double faintness(double share) {
  return kMostOfFaint * std::round(kFaintSteps * share * share) / kFaintSteps;
}

}  // namespace

OverlayScale scaleOf(std::optional<double> threshold, float factor, float largest, bool hasSign) {
  OverlayScale scale;
  scale.hasSign = hasSign;
  scale.full = largest > 0 ? largest : 1;
  if (threshold && *threshold > 0) {
    scale.threshold = static_cast<float>(*threshold);
    scale.full = factor * *scale.threshold;
  }
  return scale;
}

MapOverlay::MapOverlay(const OverlayScale& scale)
    : scale_(scale), positive_(render::warmScale()), negative_(render::coldScale()) {}

render::Rgba MapOverlay::colour(float value) const {
  const float magnitude = std::abs(value);
  if (!std::isfinite(value) || magnitude == 0 || (value < 0 && !scale_.hasSign)) return {};
  const render::ColourScale& colours = value < 0 ? negative_ : positive_;
  if (!scale_.threshold || magnitude < *scale_.threshold) {
    const auto share = static_cast<double>(std::min(1.0F, magnitude / scale_.faintUpTo()));
    return render::withAlpha(render::colourAt(colours, 0), faintness(share));
  }
  const float span = std::max(scale_.full - *scale_.threshold, 1e-30F);
  return render::withAlpha(
      render::colourAt(colours, static_cast<double>((magnitude - *scale_.threshold) / span)), 1);
}

render::Rgba unsupported(render::Rgba colour) {
  colour.alpha = static_cast<std::uint8_t>(colour.alpha / 2);
  return colour;
}

}  // namespace report
