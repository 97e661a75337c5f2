// Whether the records of a group were made alike.
#ifndef TAVMAP_GROUP_GROUP_SETTINGS_H
#define TAVMAP_GROUP_GROUP_SETTINGS_H

#include <map>
#include <string>
#include <vector>

#include "results/record.h"

namespace study {

// Which values each setting has, and in how many records. Seeds are no setting.
class SettingsSeen {
 public:
  void add(const Record& record);
  // One caution in words per setting with more than one value.
  [[nodiscard]] std::vector<std::string> differences() const;

 private:
  std::map<std::string, std::map<std::string, int>> seen_;
};

}  // namespace study

#endif
