#include "tests/calibration/library_run.h"

#include <gtest/gtest.h>

#include "formats/nifti.h"
#include "prepare/prepare.h"
#include "request/request_file.h"
#include "study/reference_job.h"
#include "tests/calibration/cell_data.h"
#include "tests/calibration/cells.h"

namespace calibration {
namespace {

std::filesystem::path writtenMap(const std::filesystem::path& folder, const std::string& kind) {
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name.find(kind) != std::string::npos && entry.path().extension() == ".gz") return entry.path();
  }
  return {};
}

TEST(LibraryRun, FindsTheMapsThatAWorkerWrites) {
  const CellData data(confoundCell(9), 77);
  const auto maps = LibraryRun(data.requestText(), data.folder()).compute(1);
  const auto request = study::parseRequest(data.requestText(), "test", data.folder());
  const study::StudyPlan plan = study::planStudy(request, request.seed.value(), TAVMAP_VERSION);
  ASSERT_TRUE(study::isPrepared(plan.runs[0], plan.workFolder));
  study::computeReferences(plan, {0}, [](double) {});
  ASSERT_FALSE(maps.empty());
  EXPECT_EQ(maps[0].type, tav::REF2VOX);
  const auto file = writtenMap(data.folder() / "results", "Ref2Vox_stat-effect");
  EXPECT_EQ(formats::readImage(file.string()).values, maps[0].values);
}

}  // namespace
}  // namespace calibration
