#include "group/group_test_record.h"

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "results/json_fields.h"

namespace study {

// Looked up by their arguments, and so in the open namespace.

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupRow>& row) {
  fields("Participant", row.participant);
  fields.unlessEmpty("Group", row.level);
  fields("Design", row.design);
  fields("Images", row.images);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupCounts>& counts) {
  fields("Positive", counts.positive);
  fields("Negative", counts.negative);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupValue>& value) {
  fields("Participant", value.participant);
  fields("Value", value.value);
  fields("TWithout", value.tWithout);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, DirectionVotes>& votes) {
  fields("ReferenceLeads", votes.referenceLeads);
  fields("VoxelLeads", votes.voxelLeads);
  fields("NotSupported", votes.notSupported);
  fields("NotTested", votes.notTested);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupPeak>& peak) {
  fields("By", peak.by);
  fields("Voxel", peak.voxel);
  fields("Millimetres", peak.mm);
  fields("ClusterVoxels", peak.voxels);
  fields("ClusterVolume", peak.volumeMm3);
  fields("Effect", peak.effect);
  fields("T", peak.t);
  fields("Z", peak.z);
  fields("PFamilyWise", peak.pFwe);
  fields("PEnhanced", peak.pTfce);
  fields("PMass", peak.pMass);
  fields("QFalseDiscovery", peak.qFdr);
  fields("Participants", peak.participants);
  fields("Directions", peak.directions);
  fields("Values", peak.values);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupImage>& image) {
  fields("What", image.what);
  fields("File", image.file);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupInference>& inference) {
  fields("ShufflesAsked", inference.shuffles);
  fields("Seed", inference.seed);
  fields("VarianceFWHM", inference.varianceFwhmMm);
  fields("Enhancement", inference.enhance);
  fields("Connectivity", inference.connectivity);
  fields("ClusterFormingZ", inference.clusterFormingZ);
  fields("SmallestShare", inference.smallestShare);
  fields("Level", inference.level);
}

namespace {

template <typename Fields, typename Record>
void describeQuestion(Fields& fields, Record& record) {
  fields("Test", record.test);
  fields("Question", record.question);
  fields.unlessEmpty("Task", record.task);
  fields.unlessEmpty("Session", record.session);
  fields("Reference", record.reference);
  fields("Condition", record.condition);
  fields.unlessEmpty("Sessions", record.sessions);
  fields("Map", record.map);
  fields.unlessEmpty("Within", record.within);
  fields("Contrast", record.contrast);
  fields("ValuesAreZ", record.isZ);
  fields("TwoSided", record.isTwoSided);
  fields("Columns", record.columns);
  fields("Weights", record.weights);
  fields("Rows", record.rows);
  fields("LeftOut", record.leftOut);
  fields.unlessEmpty("Blocks", record.blocks);
}

template <typename Fields, typename Record>
void describeFindings(Fields& fields, Record& record) {
  fields("VoxelsTested", record.voxelsTested);
  fields("VoxelsWithTooFew", record.voxelsWithoutAll);
  fields("LargestT", record.largestT);
  fields("SmallestT", record.smallestT);
  fields("TAtFamilyWise05", record.tAtFwe);
  fields("TAtFalseDiscovery05", record.tAtQ);
  fields("VoxelsByMaximum", record.byMaximum);
  fields("VoxelsByEnhancement", record.byTfce);
  fields("VoxelsByFalseDiscovery", record.byFdr);
  fields("ClustersByMass", record.byMass);
  fields("SymmetryP", record.symmetryP);
  fields("MeanSkewness", record.meanSkewness);
  fields("SpreadRatio", record.spreadRatio);
  fields("SpreadP", record.spreadP);
  fields("Peaks", record.peaks);
}

}  // namespace

template <typename Fields>
void describe(Fields& fields, Of<Fields, GroupTestRecord>& record) {
  fields("Key", record.key);
  fields("SoftwareVersion", record.version);
  describeQuestion(fields, record);
  fields("Inference", record.inference);
  fields("Exchange", record.exchange);
  fields("Shuffles", record.shuffles);
  fields("ShufflesAreAll", record.isExhaustive);
  fields("TailIsSmooth", record.isTailSmooth);
  fields("DegreesOfFreedom", record.freedom);
  describeFindings(fields, record);
  fields("Warnings", record.warnings);
  fields("Images", record.images);
  fields("ClusterTable", record.clusterTable);
  fields("ValueTable", record.valueTable);
  fields("Files", record.files);
}

std::string GroupTestRecord::image(const std::string& what) const {
  for (const GroupImage& one : images)
    if (one.what == what) return one.file;
  return "";
}

std::string groupRecordText(const GroupTestRecord& record) {
  return FieldWriter::written(record).dump(2) + "\n";
}

GroupTestRecord readGroupRecord(const std::filesystem::path& file) {
  const Json json = formats::parseJson(formats::readTextFile(file.string()), file.string());
  GroupTestRecord record;
  FieldReader::read(JsonPlace(json, file.string()), record);
  return record;
}

}  // namespace study
