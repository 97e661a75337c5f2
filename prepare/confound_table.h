// Confound tables as preprocessing writes them (fMRIPrep, XCP-D): which columns a named preset
// stands for, their values, and what the table says about motion and the start of a run.
#ifndef TAVMAP_PREPARE_CONFOUND_TABLE_H
#define TAVMAP_PREPARE_CONFOUND_TABLE_H

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace study {

struct ConfoundTable {
  std::filesystem::path file;
  std::vector<std::string> names;
  std::vector<std::vector<double>> columns;  // one value per volume, NaN where the table says "n/a"

  [[nodiscard]] std::size_t volumes() const { return columns.empty() ? 0 : columns[0].size(); }
  const std::vector<double>* find(const std::string& name) const;
};

// Tab-separated with a header line. Throws InputError naming file and line.
[[nodiscard]] ConfoundTable readConfounds(const std::filesystem::path& file);
// The same from a text; `file` stands in messages.
[[nodiscard]] ConfoundTable parseConfounds(std::istream& text, const std::filesystem::path& file);

// The columns' values, from volume `firstVolume` (0-based) on. Missing values before a column's
// first number (derivatives have none at the start) become its mean; later ones throw InputError.
[[nodiscard]] std::vector<std::vector<double>> confoundColumns(const ConfoundTable& table,
                                                               const std::vector<std::string>& names,
                                                               std::size_t firstVolume);

enum class DisplacementSource {
  kColumn,     // "framewise_displacement"
  kParameters  // translations (mm) and rotations (rad, on a sphere of 50 mm; Power et al. 2012)
};
// Frame-wise displacement in millimetres per volume, NaN for the first. Empty: none is known.
struct Displacement {
  std::vector<double> mm;
  DisplacementSource source = DisplacementSource::kColumn;
};

// The table's own column, or from its six motion columns; empty when the table has neither.
[[nodiscard]] Displacement findDisplacement(const ConfoundTable& table);
// The values. Throws InputError when there are none.
[[nodiscard]] std::vector<double> framewiseDisplacement(const ConfoundTable& table);

// Leading volumes that the table marks as not in steady state: one more than the last volume
// flagged by a non_steady_state_outlier column.
[[nodiscard]] int nonSteadyStateVolumes(const ConfoundTable& table);

}  // namespace study

#endif
