#include "report/bibliography.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace report;

TEST(Bibtex, HasAnEntryPerWork) {
  const std::string text = bibtex({Work::kGeweke1982, Work::kWinkler2016});
  EXPECT_THAT(text, testing::StartsWith("@article{geweke1982,\n  author = {Geweke, John},"));
  EXPECT_THAT(text, testing::HasSubstr("doi = {10.1109/TSP.2015.2498123}\n}\n"));
  EXPECT_EQ(citation(Work::kHaufe2013), std::string("Haufe et al. 2013"));
}

}  // namespace
