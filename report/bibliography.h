// The literature that a methods paragraph cites.
#ifndef TAVMAP_REPORT_BIBLIOGRAPHY_H
#define TAVMAP_REPORT_BIBLIOGRAPHY_H

#include <string>
#include <vector>

namespace report {

enum class Work {
  kGeweke1982,
  kBenjamini1995,
  kBenjamini2001,
  kNichols2002,
  kPhipson2010,
  kHaufe2013,
  kWinkler2016,
  kPower2012,
  kSchwarz1978,
  kAkaike1974,
  kHannan1979,
  kFreedman1983,
  kBullmore1999,
  kSmith2009,
  kWinkler2014,
  kWinkler2016Faster
};

[[nodiscard]] const char* citation(Work work);  // "Geweke 1982"
[[nodiscard]] std::string bibtex(const std::vector<Work>& works);

}  // namespace report

#endif
