#include "group/group_model.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "bids/bids_names.h"
#include "formats/atomic_file.h"
#include "request/problem.h"
#include "request/toml_table.h"

namespace study {
namespace {

const std::vector<std::string> kInferenceKeys = {"shuffles",     "seed",      "variance_fwhm_mm", "tfce",
                                                 "connectivity", "cluster_z", "smallest_share",   "level"};
const std::vector<std::string> kQuestionKeys = {"edges",      "name",   "maps",     "references",
                                                "conditions", "within", "contrast", "group_column",
                                                "covariates", "blocks", "leave_out"};

GroupInference parseInference(const toml::table& node, const std::string& file) {
  const TomlTable table(node, file, "[inference]", kInferenceKeys);
  GroupInference inference;
  inference.shuffles = table.integer("shuffles", inference.shuffles, 20, 1000000);
  inference.seed = static_cast<std::uint32_t>(table.integer("seed", 1, 0, 2147483647));
  inference.varianceFwhmMm = table.number("variance_fwhm_mm", inference.varianceFwhmMm, 0, 50);
  inference.enhance = table.flag("tfce", inference.enhance);
  inference.connectivity = table.integer("connectivity", inference.connectivity, 6, 26);
  if (inference.connectivity != 6 && inference.connectivity != 18 && inference.connectivity != 26)
    table.fail("connectivity", "must be 6, 18 or 26");
  inference.clusterFormingZ = table.number("cluster_z", inference.clusterFormingZ, 0.5, 10);
  inference.smallestShare = table.number("smallest_share", inference.smallestShare, 0.1, 1);
  inference.level = table.number("level", inference.level, 0.0001, 0.5);
  return inference;
}

GroupQuestion parseQuestion(const toml::table& node, const std::string& file) {
  const TomlTable table(node, file, "[[test]]", kQuestionKeys);
  GroupQuestion question;
  question.name = table.text("name");
  if (question.name.empty() || question.name != bidsLabel(question.name))
    table.fail("name", "must be of letters and digits: it becomes part of file names");
  question.maps = table.texts("maps");
  question.references = table.texts("references");
  question.conditions = table.texts("conditions");
  question.edges = table.text("edges");
  if (!question.edges.empty() && (table.has("maps") || table.has("references")))
    table.fail("edges", "and 'maps' or 'references' exclude each other: connectomes have all regions");
  question.within = table.text("within");
  if (!question.within.empty() && sidesOf(question.within).empty())
    table.fail("within", "must be a difference such as \"faces - houses\" or \"ses-2 - ses-1\"");
  question.contrast = table.text("contrast", question.contrast);
  question.groupColumn = table.text("group_column", question.groupColumn);
  question.covariates = table.texts("covariates");
  question.blocks = table.text("blocks");
  for (const std::string& label : table.texts("leave_out", true))
    question.leftOut.push_back(withoutPrefix(label, "sub"));
  return question;
}

std::vector<GroupQuestion> parseQuestions(const toml::table& root, const std::string& file) {
  std::vector<GroupQuestion> questions;
  const toml::array* tables = root["test"].as_array();
  if (tables == nullptr) failAt(file, 0, "asks nothing: it has no [[test]]");
  std::set<std::string> names;
  for (const toml::node& node : *tables) {
    if (!node.is_table())
      failAt(file, static_cast<int>(node.source().begin.line), "[[test]] must be a table");
    questions.push_back(parseQuestion(*node.as_table(), file));
    if (!names.insert(questions.back().name).second) {
      failAt(file, static_cast<int>(node.source().begin.line),
             fmt::format("two tests are named '{}'", questions.back().name));
    }
  }
  return questions;
}

}  // namespace

Sides sidesOf(const std::string& words) {
  constexpr std::string_view kMinus = " - ";
  const std::size_t at = words.find(kMinus);
  if (at == std::string::npos || words.find(kMinus, at + 1) != std::string::npos) return {};
  const auto trimmed = [](std::string text) {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  };
  Sides sides{trimmed(words.substr(0, at)), trimmed(words.substr(at + kMinus.size()))};
  return sides.first.empty() || sides.second.empty() ? Sides{} : sides;
}

GroupModel parseGroupModel(std::string_view text, const std::string& name) {
  try {
    const toml::table root = toml::parse(text, std::string_view(name));
    const TomlTable top(root, name, "the file", {"inference", "test"});
    GroupModel model;
    if (const toml::table* inference = top.subtable("inference"))
      model.inference = parseInference(*inference, name);
    model.questions = parseQuestions(root, name);
    return model;
  } catch (const toml::parse_error& error) {
    failAt(name, static_cast<int>(error.source().begin.line), std::string(error.description()));
  }
}

GroupModel readGroupModel(const std::filesystem::path& file) {
  return parseGroupModel(formats::readTextFile(file.string()), file.string());
}

std::string exampleGroupModel() {
  return R"(# Tests over participants: tavmap group OUT --model group.toml

[inference]
shuffles = 5000          # sign flips or permutations; all there are when these are fewer
seed = 1
tfce = true              # threshold-free cluster enhancement
connectivity = 26        # voxels that touch: 6 by faces, 18 by edges too, 26 by corners too
cluster_z = 3.1          # from which clusters form
variance_fwhm_mm = 0     # smooths the variance of t, for few participants
smallest_share = 1.0     # of the participants, whom a voxel needs to be tested
level = 0.05             # of the family-wise error and of the false discovery rate

[[test]]                 # does the influence differ from 0?
name = "mean"
maps = ["dTAVrev", "Ref2Vox"]    # default: Ref2Vox, Vox2Ref, Inst, dTAV and dTAVrev
references = ["V1"]              # default: all
conditions = ["faces"]           # default: all

[[test]]                 # paired: between conditions, or sessions ("ses-2 - ses-1")
name = "facesHouses"
within = "faces - houses"

[[test]]                 # between groups of participants.tsv, ages alike
name = "patients"
contrast = "patient - control"
group_column = "group"
covariates = ["age"]
blocks = "scanner"               # exchange only who shares this column
leave_out = ["sub-07"]

[[test]]                 # at every edge of the participants' connectomes ('tavmap connectome')
name = "edges"
edges = "NetInfluence"           # or Influence, Instantaneous
contrast = "patient - control"

[[test]]                 # with a covariate
name = "age"
contrast = "age"
covariates = ["age", "sex"]
)";
}

}  // namespace study
