// Discrete Fourier transforms of real series of one length.
#ifndef TAVMAP_DIRECTION_FOURIER_H
#define TAVMAP_DIRECTION_FOURIER_H

#include <complex>
#include <memory>
#include <span>
#include <vector>

namespace direction {

// Plans of FFTW for `length` values, at least 2. One thread at a time per object; objects on several
// threads are independent.
class Fourier {
 public:
  explicit Fourier(int length);
  ~Fourier();
  Fourier(const Fourier&) = delete;
  Fourier& operator=(const Fourier&) = delete;

  [[nodiscard]] int length() const { return length_; }
  // Frequencies 0 ... length / 2.
  [[nodiscard]] std::size_t nrOfFrequencies() const { return static_cast<std::size_t>(length_) / 2 + 1; }
  // Not normalised.
  void forward(std::span<const double> series, std::vector<std::complex<double>>& spectrum);
  // The inverse of forward(), 1 / length included.
  void inverse(std::span<const std::complex<double>> spectrum, std::span<double> series);

 private:
  struct Plans;
  int length_;
  std::unique_ptr<Plans> plans_;
};

}  // namespace direction

#endif
