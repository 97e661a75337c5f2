// The engine's map sets as files: what a run of a study gives its computer to write into.
#ifndef TAVMAP_STUDY_FILE_STORE_H
#define TAVMAP_STUDY_FILE_STORE_H

#include <filesystem>
#include <string>

#include "formats/vtc_sidecar.h"
#include "tav/memory_store.h"

namespace study {

class FileStore : public tav::MemoryStore {
 public:
  // folder: relative paths of the engine lie there. vtc: a prepared run; its sidecar says where the cells
  // are. Throws formats::FileError, and RunError without a sidecar.
  FileStore(std::filesystem::path folder, const std::filesystem::path& vtc);

  // Throws formats::FileError.
  void saveMaps(const std::string& path) override;
  // Keeps the text for whoever completes the log.
  [[nodiscard]] std::string saveLog(const std::string& path, const std::string& text) override;

  // The log that the engine saved last: its file in the folder, and its text.
  [[nodiscard]] const std::string& logFile() const { return logFile_; }
  [[nodiscard]] const std::string& logText() const { return logText_; }

 private:
  std::filesystem::path folder_;
  formats::VtcSidecar place_;
  std::string logFile_, logText_;
};

}  // namespace study

#endif
