// Whether the records of a group were made alike.
#ifndef TAVMAP_STUDY_BIDS_GROUP_SETTINGS_H
#define TAVMAP_STUDY_BIDS_GROUP_SETTINGS_H

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace study {

// Which values each setting has, and in how many records. Seeds are no setting.
class SettingsSeen {
 public:
  // Throws nlohmann::json::exception for a record that is not whole; then nothing was added.
  void add(const nlohmann::ordered_json& record);
  // One caution in words per setting with more than one value.
  std::vector<std::string> differences() const;

 private:
  std::map<std::string, std::map<std::string, int>> seen_;
};

}  // namespace study

#endif
