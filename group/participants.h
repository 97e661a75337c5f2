// What a data set says of its participants: participants.tsv.
#ifndef TAVMAP_GROUP_PARTICIPANTS_H
#define TAVMAP_GROUP_PARTICIPANTS_H

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace study {

class Participants {
 public:
  // No table: every question about a column is an error that says so.
  Participants() = default;
  // A table with the column participant_id ("sub-01" or "01") and one row per participant. Throws
  // formats::FileError, also for a participant with two rows.
  static Participants read(const std::filesystem::path& file);

  // What a column says of a participant (label without "sub-"); unset for n/a and for a participant without a
  // row. Throws InputError for a column that is not there, naming those that are.
  [[nodiscard]] std::optional<std::string> value(const std::string& column,
                                                 const std::string& participant) const;
  [[nodiscard]] const std::string& file() const { return file_; }

 private:
  std::string file_;
  std::vector<std::string> columns_;
  std::map<std::string, std::vector<std::string>> rows_;  // cells by participant
};

}  // namespace study

#endif
