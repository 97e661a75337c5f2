#include "prepare/label_files.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "formats/label_table.h"
#include "formats/nifti.h"
#include "formats/probability_atlas.h"
#include "request/problem.h"

namespace study {
namespace {

// From so many values on, an image most of whose values have no name is more likely another kind of image.
constexpr std::size_t kManyUnnamed = 10;

std::vector<formats::Label> labelsOf(const LabelVolume& volume) {
  if (volume.table.empty()) return {};
  std::vector<formats::Label> labels = formats::readLabelTable(volume.table).labels;
  std::sort(labels.begin(), labels.end(),
            [](const formats::Label& a, const formats::Label& b) { return a.index < b.index; });
  return labels;
}

LabelVolume emptyVolume(const ReferenceRequest& reference) {
  LabelVolume volume;
  volume.file = reference.image.string();
  volume.table = reference.table.empty() ? formats::labelTableBeside(volume.file) : reference.table.string();
  return volume;
}

void requireAName(const LabelVolume& volume, std::size_t names, int volumes, const std::string& where) {
  if (names == static_cast<std::size_t>(volumes)) return;
  throw InputError(fmt::format(
      "{}: {} names {} label{} (index 0, the background, left out), but {} has {} volume{}; give the table "
      "of this atlas with 'label_table'",
      where, volume.table, names, names == 1 ? "" : "s", volume.file, volumes, volumes == 1 ? "" : "s"));
}

LabelVolume readProbabilities(const ReferenceRequest& reference, const std::string& where) {
  LabelVolume volume = emptyVolume(reference);
  const std::vector<formats::Label> labels = labelsOf(volume);
  formats::MostProbableLabels most = formats::readMostProbableLabels(volume.file, reference.probability);
  if (!volume.table.empty()) requireAName(volume, labels.size(), most.volumes, where);
  for (const formats::Label& label : labels)
    volume.names[static_cast<std::int32_t>(volume.names.size()) + 1] = label.name;
  volume.grid = gridOf(most.image.header);
  volume.labels = std::move(most.image.labels);
  volume.rule = fmt::format("the volume with the largest probability, at least {}{}", reference.probability,
                            most.inPercent ? " (its values taken as per cent)" : "");
  return volume;
}

// A series cannot be told from an atlas by its header alone; its reader can.
void requireOneVolume(const ReferenceRequest& reference, const std::string& where) {
  const int volumes = formats::readImageHeader(reference.image.string()).volumes;
  if (volumes == 1) return;
  throw InputError(
      fmt::format("{}: {} has {} volumes, as a probability atlas has, but a label image has one; say "
                  "probability = 0.5 in this [[reference]] to take each voxel for the most probable label, "
                  "or give a label image",
                  where, reference.image.string(), volumes));
}

std::size_t valuesWithoutName(const LabelVolume& volume, const std::set<std::int32_t>& values) {
  return static_cast<std::size_t>(std::count_if(values.begin(), values.end(), [&](std::int32_t value) {
    return value != 0 && volume.names.count(value) == 0;
  }));
}

// Per cent of probability are whole numbers too, and so are the values of an atlas with another's table.
void questionNames(const ReferenceRequest& reference, const std::string& where, LabelVolume& volume) {
  const std::set<std::int32_t> values(volume.labels.begin(), volume.labels.end());
  const std::size_t unnamed = valuesWithoutName(volume, values), all = values.size() - values.count(0);
  if (volume.table.empty() || unnamed < kManyUnnamed || 2 * unnamed <= all) return;
  const std::string seen =
      fmt::format("{} of the {} values in {} have no name in {}", unnamed, all, volume.file, volume.table);
  const char* what =
      "is it a probability map (then say probability = 0.5, or threshold it), or the table of another atlas "
      "(then give its own with 'label_table')?";
  if (reference.allLabels)
    throw InputError(fmt::format("{}: {}; {} To take it as it is, name the labels", where, seen, what));
  volume.question = fmt::format("{}: {}", seen, what);
}

}  // namespace

LabelVolume readLabels(const ReferenceRequest& reference, const std::string& where) {
  if (reference.probability > 0) return readProbabilities(reference, where);
  requireOneVolume(reference, where);
  LabelVolume volume = emptyVolume(reference);
  formats::LabelImage image = formats::readLabelImage(volume.file);
  volume.grid = gridOf(image.header);
  volume.labels = std::move(image.labels);
  for (const formats::Label& label : labelsOf(volume)) volume.names[label.index] = label.name;
  questionNames(reference, where, volume);
  return volume;
}

LabelVolume readMask(const ReferenceRequest& reference) {
  const formats::Image3D image = formats::readImage(reference.image.string());
  LabelVolume volume;
  volume.grid = gridOf(image.header);
  volume.file = reference.image.string();
  for (const float value : image.values) volume.labels.push_back(value != 0 ? 1 : 0);
  return volume;
}

}  // namespace study
