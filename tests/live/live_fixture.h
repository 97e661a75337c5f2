// The small data set, loaded, and `tavmap run` beside it.
#ifndef TAVMAP_TESTS_LIVE_LIVE_FIXTURE_H
#define TAVMAP_TESTS_LIVE_LIVE_FIXTURE_H

#include <memory>
#include <string>

#include "live/engine.h"
#include "request/request_file.h"
#include "tests/support/run_command_fixture.h"

class LiveStudy : public SmallStudyRun {
 protected:
  static live::LoadOptions loadOptions() {
    live::LoadOptions options;
    options.program = TAVMAP_PROGRAM;
    options.version = TAVMAP_VERSION;
    options.mostBytes = std::size_t{1} << 30U;
    return options;
  }
  study::Request request(const std::string& settings = "", const std::string& more = "") {
    study::Request request = study::readRequestFile(write(settings, more).string());
    request.output.folder = folder() / "explored";
    request.output.workFolder = folder() / "work";
    return request;
  }
  std::shared_ptr<const live::LoadedStudy> loaded(const std::string& settings = "",
                                                  const std::string& more = "") {
    return live::loadStudy(request(settings, more), loadOptions());
  }

  static live::Ask askFor(const live::Reference& reference, const std::string& condition = "whole") {
    return {reference, condition, 1, 20, {tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV}};
  }
  static live::Reference label(std::int32_t value) {
    live::Reference reference;
    reference.kind = study::ReferenceKind::kLabels;
    reference.label = value;
    return reference;
  }
  static live::Reference sphere(const live::LoadedStudy& study, std::array<int, 3> voxel, double radiusMm) {
    live::Reference reference;
    reference.kind = study::ReferenceKind::kSphere;
    reference.centreMm = study.plan.space.grid.toMm(voxel);
    reference.radiusMm = radiusMm;
    return reference;
  }
  static live::Reference drawing(std::vector<std::size_t> cells) {
    live::Reference reference;
    reference.kind = study::ReferenceKind::kVoxels;
    reference.cells = std::move(cells);
    return reference;
  }
};

inline const std::atomic<bool> kNeverCancelled = false;

#endif
