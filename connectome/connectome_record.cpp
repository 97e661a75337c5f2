#include "connectome/connectome_record.h"

#include "formats/atomic_file.h"
#include "results/json_fields.h"

namespace connectome {

using study::Of;

// Looked up by their arguments, and so in the open namespace.

template <typename Fields>
void describe(Fields& fields, Of<Fields, MeasureRecord>& measure) {
  fields("Measure", measure.measure);
  fields("EdgesTested", measure.edges);
  fields("EdgesPassing", measure.passing);
  fields("EdgesFamilyWise", measure.familyWise);
  fields("LargestMagnitude", measure.largest);
  fields("File", measure.file);
  fields("PFile", measure.pFile);
  fields("QFile", measure.qFile);
  fields("FamilyWiseFile", measure.familyWiseFile);
}

template <typename Fields>
void describe(Fields& fields, Of<Fields, ConditionRecord>& condition) {
  fields("Condition", condition.name);
  fields("Runs", condition.runs);
  fields("Volumes", condition.volumes);
  fields("EffectiveVolumes", condition.effectiveVolumes);
  fields("Samples", condition.samples);
  fields("Measures", condition.measures);
  fields("PairsTestedForDirection", condition.pairsTested);
  fields("PairsWithSupportedDirection", condition.pairsSupported);
  fields("DirectionFile", condition.directionFile);
  fields("NodesFile", condition.nodesFile);
  fields("EdgesFile", condition.edgesFile);
}

namespace {

// Texts by their names, in an object.
struct Words {
  std::string name, text;
};

template <typename Fields>
void describe(Fields& fields, Of<Fields, Words>& words) {
  fields("Name", words.name);
  fields("Text", words.text);
}

}  // namespace

template <typename Fields>
void describe(Fields& fields, Of<Fields, Record>& record) {
  std::vector<Words> madeFrom;
  for (const auto& [name, text] : record.madeFrom) madeFrom.push_back({name, text});
  fields("Title", record.title);
  fields("Nodes", record.nodes);
  fields("NodesWithoutSeries", record.undefined);
  fields("ModelOrder", record.order);
  fields("ModelOrderChosenBy", record.orderChosenBy);
  fields("SurrogatesPerNode", record.surrogates);
  fields("ConditionalOn", record.givenSeries);
  fields("QValues", record.q);
  fields("FDRConstant", record.fdrConstant);
  fields("Networks", record.networks);
  fields("Conditions", record.conditions);
  fields("Warnings", record.warnings);
  fields("Seed", record.seed);
  fields("TavmapVersion", record.version);
  fields("Key", record.key);
  fields("MadeFrom", madeFrom);
  fields("Files", record.files);
  if constexpr (Fields::kReads)
    for (const Words& words : madeFrom) record.madeFrom[words.name] = words.text;
}

std::string recordFileOf(const std::string& prefix) {
  return prefix + "_connectome.json";
}

std::string recordText(const Record& record) {
  return study::FieldWriter::written(record).dump(2) + "\n";
}

Record readRecordFile(const std::string& path) {
  const formats::Json json = formats::parseJson(formats::readTextFile(path), path);
  Record record;
  study::FieldReader::read(formats::JsonPlace(json, path), record);
  return record;
}

}  // namespace connectome
