// Data without a problem: at most 5 % of data sets get a warning.
#include <gtest/gtest.h>

#include <functional>

#include "tests/suitability/simulated.h"

namespace {

using simulated::Run;

struct Clean {
  const char* name;
  double trSeconds;
  std::size_t volumes;
  std::function<Run(double trSeconds, std::size_t volumes, unsigned seed)> make;
  bool isWhite;  // after a model of order 1
};

std::ostream& operator<<(std::ostream& out, const Clean& clean) {
  return out << clean.name << ", TR " << clean.trSeconds << ", " << clean.volumes << " volumes";
}

constexpr unsigned kDataSets = 100;

class FalseAlarms : public ::testing::TestWithParam<Clean> {};

TEST_P(FalseAlarms, AreRare) {
  const Clean& clean = GetParam();
  int alarms = 0, notWhite = 0;
  for (unsigned seed = 0; seed < kDataSets; ++seed) {
    const std::vector<std::string> warnings =
        simulated::warningsOf(clean.make(clean.trSeconds, clean.volumes, seed + 1000));
    const int colours = simulated::anyContains(warnings, "not white") ? 1 : 0;
    notWhite += colours;
    if (static_cast<int>(warnings.size()) > colours) ++alarms;
  }
  RecordProperty("alarms", alarms);
  EXPECT_LE(alarms, 5);
  EXPECT_LE(notWhite, clean.isWhite ? 2 : static_cast<int>(kDataSets));
}

std::vector<Clean> cleanData() {
  std::vector<Clean> all;
  const auto noise = [](double a) {
    return [a](double tr, std::size_t n, unsigned seed) { return simulated::independent(a, tr, n, seed); };
  };
  const auto field = [](double a, double common) {
    return [=](double tr, std::size_t n, unsigned seed) {
      return simulated::smoothField(a, tr, n, seed, common);
    };
  };
  const auto vessels = [](double measured) {
    return [measured](double tr, std::size_t n, unsigned seed) {
      return simulated::vascular(tr, measured, n, seed);
    };
  };
  for (const double tr : {2.0, 0.7})
    for (const std::size_t n : {100U, 300U, 1200U}) {
      for (const double a : {0.3, 0.6, 0.9}) {
        all.push_back({"autoregressive", tr, n, noise(a), true});
        all.push_back({"smooth", tr, n, field(a, 1), true});
        all.push_back({"one signal everywhere", tr, n, field(a, 6), true});
      }
      all.push_back({"haemodynamic", tr, n, vessels(0), false});
      all.push_back({"haemodynamic, measured", tr, n, vessels(0.5), false});
    }
  return all;
}

INSTANTIATE_TEST_SUITE_P(CleanData, FalseAlarms, ::testing::ValuesIn(cleanData()));

}  // namespace
