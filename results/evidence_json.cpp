#include "results/evidence_json.h"

#include <fmt/core.h>

#include <initializer_list>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "results/json_fields.h"

namespace study {

// Looked up by their arguments, and so in the open namespace.

template <typename Fields>
void describe(Fields& fields, Of<Fields, MapHistogram>& histogram) {
  fields("Edges", histogram.edges);
  fields("Observed", histogram.observed);
  fields("ObservedBelow", histogram.observedBelow);
  fields("ObservedAbove", histogram.observedAbove);
  fields("Null", histogram.null);
  fields("NullBelow", histogram.nullBelow);
  fields("NullAbove", histogram.nullAbove);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, SearchEvidence>& search) {
  fields("Voxels", search.voxels);
  fields("FDRConstant", search.fdrConstant);
  fields("Rank", search.ranks);
  fields("Magnitude", search.magnitudes);
  fields("P", search.p);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, MapEvidence>& map) {
  fields.choice("MapType", map.type, tav::MAPTYPE_NAMES, "map type");
  fields("Histogram", map.histogram);
  fields.unlessEmpty("Search", map.search);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, SpectrumEvidence>& spectrum) {
  fields("Interval", spectrum.interval);
  fields("Frequency", spectrum.hertz);
  fields("Reference", spectrum.reference);
  fields("Surrogates", spectrum.surrogates);
  fields.unlessEmpty("SurrogateLow", spectrum.low);
  fields.unlessEmpty("SurrogateMedian", spectrum.median);
  fields.unlessEmpty("SurrogateHigh", spectrum.high);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, ResidualEvidence>& residuals) {
  fields("Residuals", residuals.residuals);
  fields("Autocorrelation", residuals.correlations);
  fields("Expected", residuals.expected);
  fields("Bound", residuals.bound);
  fields("LjungBox", residuals.ljungBox);
  fields("DegreesOfFreedom", residuals.degreesOfFreedom);
  fields("P", residuals.p);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, PredictabilityEvidence>& predictability) {
  fields("Reference", predictability.reference);
  fields("MedianVoxel", predictability.medianVoxel);
  fields("Voxels", predictability.voxels);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, RunEvidence>& run) {
  fields("Run", run.run);
  fields.unlessEmpty("ReferenceFromRun", run.referenceFromRun);
  fields("RepetitionTime", run.repetitionTime);
  fields("Volumes", run.volumes);
  fields("DroppedVolumes", run.droppedVolumes);
  fields("CensoredVolumes", run.censoredVolumes);
  fields("Spikes", run.spikes);
  fields.unlessEmpty("Spectrum", run.spectrum);
  fields.unlessEmpty("Residuals", run.residuals);
  fields.unlessEmpty("Predictability", run.predictability);
  fields.unlessEmpty("MotionSource", run.motion.source);
  fields.unlessEmpty("Motion", run.motion.displacement);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, Evidence>& evidence) {
  fields("Reference", evidence.reference);
  fields("Condition", evidence.condition);
  fields("SoftwareVersion", evidence.version);
  fields("Maps", evidence.maps);
  fields("Runs", evidence.runs);
  fields.inside("VoxelsBySlice", [&evidence](Fields& slices) {
    for (std::size_t code = 0; code < kStatusCodes; ++code)
      slices(statusName(static_cast<StatusCode>(code)), evidence.voxelsBySlice[code]);
  });
}

namespace {

// Lists of which each number belongs to one of the first.
void requireLength(std::size_t length, std::initializer_list<std::size_t> others, const std::string& path,
                   const std::string& where) {
  for (const std::size_t other : others) {
    if (other == length) continue;
    throw formats::FileError(path, fmt::format("{}: {} numbers where {} belong", where, other, length),
                             FieldReader::kRemedy);
  }
}

void requireWhole(const MapEvidence& map, const std::string& path, const std::string& where) {
  const MapHistogram& bins = map.histogram;
  requireLength(bins.edges.empty() ? 0 : bins.edges.size() - 1, {bins.observed.size(), bins.null.size()},
                path, where + ".Histogram");
  requireLength(map.search.ranks.size(), {map.search.magnitudes.size(), map.search.p.size()}, path,
                where + ".Search");
}

void requireWhole(const RunEvidence& run, const std::string& path, const std::string& where) {
  const SpectrumEvidence& spectrum = run.spectrum;
  const std::size_t surrogates = spectrum.surrogates == 0 ? 0 : spectrum.hertz.size();
  requireLength(spectrum.hertz.size(), {spectrum.reference.size()}, path, where + ".Spectrum");
  requireLength(surrogates, {spectrum.low.size(), spectrum.median.size(), spectrum.high.size()}, path,
                where + ".Spectrum");
  requireLength(run.residuals.correlations.size(), {run.residuals.expected.size()}, path,
                where + ".Residuals");
}

void requireWhole(const Evidence& evidence, const std::string& path) {
  for (std::size_t i = 0; i < evidence.maps.size(); ++i)
    requireWhole(evidence.maps[i], path, fmt::format("Maps[{}]", i));
  for (std::size_t i = 0; i < evidence.runs.size(); ++i)
    requireWhole(evidence.runs[i], path, fmt::format("Runs[{}]", i));
  for (const std::vector<std::size_t>& slices : evidence.voxelsBySlice)
    requireLength(evidence.voxelsBySlice[0].size(), {slices.size()}, path, "VoxelsBySlice");
}

}  // namespace

std::string evidenceText(const Evidence& evidence) {
  return FieldWriter::written(evidence).dump(1) + "\n";
}

Evidence evidenceFromText(const std::string& text, const std::string& path) {
  try {
    Evidence evidence;
    FieldReader::read(JsonPlace(formats::parseJson(text, path), path), evidence);
    requireWhole(evidence, path);
    return evidence;
  } catch (const formats::FileError& error) {
    throw formats::FileError(path, fmt::format("not a whole evidence file ({})", error.reason()),
                             "Compute the result again");
  }
}

Evidence readEvidenceFile(const std::string& path) {
  return evidenceFromText(formats::readTextFile(path), path);
}

}  // namespace study
