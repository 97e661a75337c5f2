#include "report/bibliography.h"

#include <fmt/core.h>

#include <array>
#include <cstddef>

namespace report {
namespace {

struct Entry {
  Work work;
  const char *citation, *key, *authors, *title, *journal, *volume, *pages, *year, *doi;
};

constexpr auto kEntries = std::to_array<Entry>({
    {Work::kGeweke1982, "Geweke 1982", "geweke1982", "Geweke, John",
     "Measurement of linear dependence and feedback between multiple time series",
     "Journal of the American Statistical Association", "77", "304--313", "1982",
     "10.1080/01621459.1982.10477803"},
    {Work::kBenjamini1995, "Benjamini & Hochberg 1995", "benjamini1995",
     "Benjamini, Yoav and Hochberg, Yosef",
     "Controlling the false discovery rate: a practical and powerful approach to multiple testing",
     "Journal of the Royal Statistical Society: Series B", "57", "289--300", "1995",
     "10.1111/j.2517-6161.1995.tb02031.x"},
    {Work::kBenjamini2001, "Benjamini & Yekutieli 2001", "benjamini2001",
     "Benjamini, Yoav and Yekutieli, Daniel",
     "The control of the false discovery rate in multiple testing under dependency", "Annals of Statistics",
     "29", "1165--1188", "2001", "10.1214/aos/1013699998"},
    {Work::kNichols2002, "Nichols & Holmes 2002", "nichols2002", "Nichols, Thomas E. and Holmes, Andrew P.",
     "Nonparametric permutation tests for functional neuroimaging: a primer with examples",
     "Human Brain Mapping", "15", "1--25", "2002", "10.1002/hbm.1058"},
    {Work::kPhipson2010, "Phipson & Smyth 2010", "phipson2010", "Phipson, Belinda and Smyth, Gordon K.",
     "Permutation P-values should never be zero: calculating exact P-values when permutations are randomly "
     "drawn",
     "Statistical Applications in Genetics and Molecular Biology", "9", "39", "2010",
     "10.2202/1544-6115.1585"},
    {Work::kHaufe2013, "Haufe et al. 2013", "haufe2013",
     "Haufe, Stefan and Nikulin, Vadim V. and M{\\\"u}ller, Klaus-Robert and Nolte, Guido",
     "A critical assessment of connectivity measures for EEG data: a simulation study", "NeuroImage", "64",
     "120--133", "2013", "10.1016/j.neuroimage.2012.09.036"},
    {Work::kWinkler2016, "Winkler et al. 2016", "winkler2016",
     "Winkler, Irene and Panknin, Danny and Bartz, Daniel and M{\\\"u}ller, Klaus-Robert and Haufe, Stefan",
     "Validity of time reversal for testing Granger causality", "IEEE Transactions on Signal Processing",
     "64", "2746--2760", "2016", "10.1109/TSP.2015.2498123"},
    {Work::kPower2012, "Power et al. 2012", "power2012",
     "Power, Jonathan D. and Barnes, Kelly A. and Snyder, Abraham Z. and Schlaggar, Bradley L. and Petersen, "
     "Steven E.",
     "Spurious but systematic correlations in functional connectivity MRI networks arise from subject motion",
     "NeuroImage", "59", "2142--2154", "2012", "10.1016/j.neuroimage.2011.10.018"},
    {Work::kSchwarz1978, "Schwarz 1978", "schwarz1978", "Schwarz, Gideon",
     "Estimating the dimension of a model", "Annals of Statistics", "6", "461--464", "1978",
     "10.1214/aos/1176344136"},
    {Work::kAkaike1974, "Akaike 1974", "akaike1974", "Akaike, Hirotugu",
     "A new look at the statistical model identification", "IEEE Transactions on Automatic Control", "19",
     "716--723", "1974", "10.1109/TAC.1974.1100705"},
    {Work::kHannan1979, "Hannan & Quinn 1979", "hannan1979", "Hannan, Edward J. and Quinn, Barry G.",
     "The determination of the order of an autoregression",
     "Journal of the Royal Statistical Society: Series B", "41", "190--195", "1979",
     "10.1111/j.2517-6161.1979.tb01072.x"},
    {Work::kFreedman1983, "Freedman & Lane 1983", "freedman1983", "Freedman, David and Lane, David",
     "A nonstochastic interpretation of reported significance levels",
     "Journal of Business & Economic Statistics", "1", "292--298", "1983", "10.1080/07350015.1983.10509354"},
    {Work::kBullmore1999, "Bullmore et al. 1999", "bullmore1999",
     "Bullmore, Edward T. and Suckling, John and Overmeyer, Stephan and Rabe-Hesketh, Sophia and Taylor, "
     "Eric "
     "and Brammer, Michael J.",
     "Global, voxel, and cluster tests, by theory and permutation, for a difference between two groups of "
     "structural MR images of the brain",
     "IEEE Transactions on Medical Imaging", "18", "32--42", "1999", "10.1109/42.750253"},
    {Work::kSmith2009, "Smith & Nichols 2009", "smith2009", "Smith, Stephen M. and Nichols, Thomas E.",
     "Threshold-free cluster enhancement: addressing problems of smoothing, threshold dependence and "
     "localisation in cluster inference",
     "NeuroImage", "44", "83--98", "2009", "10.1016/j.neuroimage.2008.03.061"},
    {Work::kWinkler2014, "Winkler et al. 2014", "winkler2014",
     "Winkler, Anderson M. and Ridgway, Gerard R. and Webster, Matthew A. and Smith, Stephen M. and Nichols, "
     "Thomas E.",
     "Permutation inference for the general linear model", "NeuroImage", "92", "381--397", "2014",
     "10.1016/j.neuroimage.2014.01.060"},
    {Work::kWinkler2016Faster, "Winkler et al. 2016", "winkler2016faster",
     "Winkler, Anderson M. and Ridgway, Gerard R. and Douaud, Gwena{\\\"e}lle and Nichols, Thomas E. and "
     "Smith, "
     "Stephen M.",
     "Faster permutation inference in brain imaging", "NeuroImage", "141", "502--516", "2016",
     "10.1016/j.neuroimage.2016.05.068"},
});

constexpr bool followsTheWorks() {
  for (std::size_t i = 0; i < kEntries.size(); ++i)
    if (static_cast<std::size_t>(kEntries[i].work) != i) return false;
  return true;
}
static_assert(followsTheWorks(), "one entry per work, in their order");

const Entry& entryOf(Work work) {
  return kEntries[static_cast<std::size_t>(work)];
}

}  // namespace

const char* citation(Work work) {
  return entryOf(work).citation;
}

std::string bibtex(const std::vector<Work>& works) {
  std::string text;
  for (const Work work : works) {
    const Entry& e = entryOf(work);
    text += fmt::format(
        "@article{{{},\n  author = {{{}}},\n  title = {{{}}},\n  journal = {{{}}},\n  volume = {{{}}},\n  "
        "pages = "
        "{{{}}},\n  year = {{{}}},\n  doi = {{{}}}\n}}\n",
        e.key, e.authors, e.title, e.journal, e.volume, e.pages, e.year, e.doi);
  }
  return text;
}

}  // namespace report
