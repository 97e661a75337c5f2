// Surrogates of a series that keep its spectrum and its envelope, and nothing of its phases.
#ifndef TAVMAP_SIMO_RESIDUAL_SURROGATES_H
#define TAVMAP_SIMO_RESIDUAL_SURROGATES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "simo/burg.h"
#include "simo/random_stream.h"
#include "simo/slow_waves.h"

namespace simo {

// Drives an autoregressive model of the series with the series' own residuals, each where it stood and
// times a random sign: a spike or a change of variance stays where it was, its sign and with it any
// relation to another series does not. A spike that was added to the series, as movement adds it, does not
// fade as the model says: the model answers with as many further residuals as it has coefficients. These
// share the spike's sign, or the surrogates would hold echoes that the series does not have; and the model is
// fitted to what lies between spikes, which would otherwise hide how the series remembers. The model
// starts with a warm-up of residuals resampled with random signs; values outside the stretches get such
// residuals as well. Waves slower than the longest memory that the model may have, which it therefore cannot
// tell from each other, get the amplitude that they have in the series.
// (Sign flips of residuals: Wu 1986, the wild bootstrap, Annals of Statistics 14, 1261-1295,
// doi:10.1214/aos/1176350142; signs shared by neighbours: Shao 2010, The dependent wild bootstrap, Journal
// of the American Statistical Association 105, 218-235, doi:10.1198/jasa.2009.tm08744. Outliers that are
// added and those that the model carries on: Fox 1972, Journal of the Royal Statistical Society B 34,
// 350-363, doi:10.1111/j.2517-6161.1972.tb00912.x. Amplitudes of the data in surrogates: Theiler et al. 1992,
// Physica D 58, 77-94, doi:10.1016/0167-2789(92)90102-S.)
class ResidualSurrogates {
 public:
  // series: one value per volume, finite within the stretches, whose mean and line are taken off first.
  // stretches: what is known of it, ascending.
  ResidualSurrogates(std::span<const float> series, const std::vector<Stretch>& stretches);

  // False when the stretches have no variance or values that are not finite: there are no surrogates.
  [[nodiscard]] bool isDefined() const;
  [[nodiscard]] const BurgModel& model() const { return model_; }
  // Writes one surrogate, as many values as the series has. Takes a number from the stream for each
  // value of the warm-up and of the series, and one more for each resampled residual. Allocates nothing
  // after the first call.
  void draw(RandomStream& random, std::span<float> surrogate);
  // How many numbers a surrogate takes, each the same.
  [[nodiscard]] std::uint64_t numbersPerDraw() const;

  static constexpr std::size_t kTogether = 8;
  // As many surrogates, one behind the other, each the very one that draw() makes of its stream, in a third
  // of the time.
  void drawTogether(std::span<RandomStream, kTogether> random, std::span<float> surrogates);

 private:
  void keepResiduals(const std::vector<Stretch>& stretches);
  void simulateTogether(std::span<RandomStream, kTogether> random);
  // Bit 20 of a number: its lowest bits are the generator's weakest.
  [[nodiscard]] static double signFrom(int number);
  [[nodiscard]] double resampled(RandomStream& random) const;

  BurgModel model_;
  std::vector<double> innovations_;  // per value of the series
  std::vector<bool> known_;          // whether it lies in a stretch
  std::vector<bool> follows_;        // whether it shares the sign of the value before it
  std::vector<double> simulated_;    // warm-up and series
  std::vector<Abreast> together_;    // the same of many surrogates
  SlowWaves waves_;
  std::vector<double> amplitudes_;  // of the series' slow waves
};

}  // namespace simo

#endif
