#include "report/methods_text.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

namespace report {
namespace {

using study::Record;

class Writer {
 public:
  void say(const std::string& sentence) { text_.words += (text_.words.empty() ? "" : " ") + sentence; }
  // "(Geweke 1982; ...)", and they are among the works from now on.
  std::string cite(std::initializer_list<Work> works) {
    std::string cited;
    for (const Work work : works) {
      cited += fmt::format("{}{}", cited.empty() ? "" : "; ", citation(work));
      if (std::find(text_.works.begin(), text_.works.end(), work) == text_.works.end())
        text_.works.push_back(work);
    }
    return "(" + cited + ")";
  }
  [[nodiscard]] MethodsText text() const { return text_; }

 private:
  MethodsText text_;
};

std::string listed(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 6;
  if (names.size() > kMost) return fmt::format("{} regions", names.size());
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i)
    text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
  return text;
}

void sayMeasures(const std::vector<const Record*>& records, Writer& writer) {
  std::vector<std::string> names;
  for (const Record* record : records) names.push_back(record->reference);
  writer.say(
      fmt::format("Directed influence between {} and every voxel was mapped with Tavmap {}: Geweke's "
                  "measures of linear feedback "
                  "{} from the reference to the voxel, from the voxel to the reference and within one "
                  "volume, and the difference "
                  "of the first two, from autoregressive models.",
                  listed(names), records[0]->model.version, writer.cite({Work::kGeweke1982})));
}

void sayOrder(const study::Settings& settings, Writer& writer) {
  std::string why = "fixed in advance";
  if (settings.orderChoice == study::OrderChoice::kBic)
    why = "chosen by the Bayesian information criterion " + writer.cite({Work::kSchwarz1978});
  if (settings.orderChoice == study::OrderChoice::kAic)
    why = "chosen by Akaike's information criterion " + writer.cite({Work::kAkaike1974});
  if (settings.orderChoice == study::OrderChoice::kHqc)
    why = "chosen by the Hannan-Quinn criterion " + writer.cite({Work::kHannan1979});
  writer.say(fmt::format(
      "Models of order {} ({}) were fitted{} after mean and linear trend had been removed from every "
      "interval.",
      settings.order, why,
      settings.method == study::Method::kCalibrated ? " by least squares over common samples" : ""));
}

std::string preparationOf(const study::RunRecord& run, Writer& writer) {
  std::string text;
  if (run.volumesDropped > 0) text += fmt::format(", the first {} dropped", run.volumesDropped);
  if (run.volumesCensored > 0)
    text += fmt::format(", {} censored for motion {}", run.volumesCensored, writer.cite({Work::kPower2012}));
  if (!run.confoundsRegressed.empty())
    text += fmt::format(", {} confound regressors of rank {} regressed out of voxels and surrogates",
                        run.confoundsRegressed.size(), run.confoundDegreesOfFreedom);
  return text;
}

void sayData(const Record& record, Writer& writer) {
  for (const study::ConditionRecord& condition : record.conditions) {
    std::string runs;
    for (const study::RunRecord& run : condition.runs)
      runs += fmt::format("{}{} (TR {} s, {} of {} volumes{})", runs.empty() ? "" : ", ", run.run,
                          run.repetitionTime, run.volumesUsed, run.volumes, preparationOf(run, writer));
    writer.say(fmt::format("Condition {} rests on {} effective volumes of {}; {} voxels were computed.",
                           condition.name, condition.effectiveVolumes, runs, condition.voxelsComputed()));
  }
}

std::string qList(const study::Settings& settings) {
  std::string text;
  for (const double q : settings.qValues) text += fmt::format("{}{}", text.empty() ? "" : ", ", q);
  return text;
}

void sayCalibrated(const study::Settings& settings, Writer& writer) {
  writer.say(
      fmt::format("The null distribution came from {} surrogates of the reference's time series, driven by "
                  "the residuals of its own "
                  "autoregressive model with random signs and put through all preparation that the series "
                  "went through; {} of them "
                  "were drawn for every voxel.",
                  settings.surrogates, settings.nullDraws));
  writer.say(fmt::format(
      "Thresholds were found by the step-up procedure {} over the voxels outside the reference at "
      "q = {}, each q divided by {}, with p-values that count the observation itself {}.",
      writer.cite({Work::kBenjamini1995}), qList(settings), settings.fdrConstant,
      writer.cite({Work::kPhipson2010})));
  if (settings.fweDraws > 0)
    writer.say(fmt::format(
        "Family-wise p-values of voxels and of cluster masses came from {} surrogates, each against "
        "the whole brain {}.",
        settings.fweDraws, writer.cite({Work::kNichols2002})));
}

void sayPlugin(const study::Settings& settings, Writer& writer) {
  writer.say(fmt::format(
      "The null distribution came from {} simulations of autoregressive models of the reference, one of them "
      "drawn for "
      "every voxel; thresholds for the false discovery rates q = {} {} were found by a walk from the "
      "strongest voxel "
      "down (constant {}).",
      settings.surrogates, qList(settings), writer.cite({Work::kBenjamini2001}), settings.cvConstant));
}

bool hasDirection(const std::vector<const Record*>& records) {
  for (const Record* record : records)
    for (const study::ConditionRecord& condition : record->conditions)
      if (!condition.direction.empty()) return true;
  return false;
}

void sayDirection(Writer& writer) {
  writer.say(
      "Every voxel that passed in the difference map at the largest q was tested with reversed time against "
      "59 "
      "surrogates that share with it only what the pair shares at the same moment " +
      writer.cite({Work::kHaufe2013, Work::kWinkler2016}) +
      "; direction is reported where it was supported.");
}

}  // namespace

MethodsText methodsText(const std::vector<const Record*>& records) {
  Writer writer;
  const study::Settings& settings = records[0]->model.settings;
  sayMeasures(records, writer);
  sayData(*records[0], writer);
  sayOrder(settings, writer);
  if (settings.method == study::Method::kCalibrated)
    sayCalibrated(settings, writer);
  else
    sayPlugin(settings, writer);
  if (hasDirection(records)) sayDirection(writer);
  writer.say(fmt::format("Random numbers were seeded with {}.", records[0]->model.seed));
  return writer.text();
}

}  // namespace report
