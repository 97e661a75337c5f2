#include "live/engine.h"

#include <cmath>
#include <cstring>

#include "formats/atomic_file.h"
#include "formats/nifti.h"
#include "request/problem.h"
#include "request/request_text.h"
#include "results/output_names.h"
#include "results/record_json.h"
#include "tav/at_once.h"
#include "tests/live/live_fixture.h"
#include "tests/support/message_of.h"

namespace {

namespace fs = std::filesystem;
using live::Care;

// NaN equals itself.
bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

class LiveEngine : public LiveStudy {
 protected:
  // The record of `tavmap run` on the request that the engine makes of what is asked.
  study::Record runAsked(const live::LoadedStudy& study, const live::Ask& ask) {
    study::Request request = live::requestFor(study, ask, "saved");
    request.output.folder = folder() / "run";
    request.settings.fweDraws = 10;
    const fs::path file = folder() / "saved.toml";
    formats::writeTextFile(file.string(), study::requestText(request));
    const ProgramResult result = tavmap({"run", file.string(), "--no-report"}, folder());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    for (const auto& entry : fs::directory_iterator(folder() / "run"))
      if (entry.path().filename().string().ends_with("_tavmap.json"))
        return study::readRecordFile(entry.path().string());
    ADD_FAILURE() << "no record";
    return {};
  }
  std::shared_ptr<const live::LoadedStudy> loadedWith(int surrogates) {
    study::Request request = this->request();
    request.settings.surrogates = surrogates;
    request.settings.qValues = {0.05, 0.5};
    return live::loadStudy(request, loadOptions());
  }
  formats::Image3D image(const std::string& name) {
    return formats::readImage((folder() / "run" / name).string());
  }

  void expectSameMap(const live::LoadedStudy& study, const live::LiveMaps& maps,
                     const study::MapResult& written) {
    const live::LiveMap* const map = maps.of(written.type);
    ASSERT_NE(map, nullptr);
    const formats::Image3D values = image(written.file);
    for (std::size_t i = 0; i < study.cells.size(); ++i)
      ASSERT_EQ(map->values[i], values.values[study.cells[i]]) << written.file << ", cell " << i;
    ASSERT_EQ(map->thresholds.size(), written.thresholds.size());
    for (std::size_t q = 0; q < written.thresholds.size(); ++q) {
      EXPECT_EQ(map->thresholds[q].anyPasses(), written.thresholds[q].threshold.has_value());
      const float found =
          map->thresholds[q].threshold;  // infinite when nothing passes, which a record leaves out
      EXPECT_EQ(found,
                static_cast<float>(written.thresholds[q].threshold.value_or(static_cast<double>(found))));
      EXPECT_EQ(map->thresholds[q].nrPassing, written.thresholds[q].voxelsPassing);
    }
    if (written.pFile.empty()) return;
    const formats::Image3D p = image(written.pFile);
    for (std::size_t i = 0; i < study.cells.size(); ++i) {
      if (maps.isReference[i] || std::isnan(map->p[i])) continue;  // images leave the reference out
      ASSERT_NEAR(-std::log10(map->p[i]), p.values[study.cells[i]], 1e-5F) << "cell " << i;
    }
  }

  // Everything that both say, bit for bit.
  void expectSameAsRun(const std::shared_ptr<const live::LoadedStudy>& study, const live::Ask& ask,
                       int threads) {
    live::Engine engine(study, threads);
    const live::LiveMaps maps = engine.compute(ask, Care::kFull, kNeverCancelled);
    const study::Record record = runAsked(*study, ask);
    ASSERT_EQ(record.conditions.size(), 1U);
    EXPECT_EQ(record.reference, maps.reference);
    EXPECT_EQ(record.conditions[0].maps.size(), ask.types.size());
    for (const study::MapResult& written : record.conditions[0].maps) expectSameMap(*study, maps, written);
    if (record.conditions[0].direction.empty()) return;
    const std::vector<std::uint8_t> codes = engine.directions(maps, kNeverCancelled);
    const formats::Image3D directions = image(record.conditions[0].direction.file);
    for (std::size_t i = 0; i < codes.size(); ++i)
      ASSERT_EQ(static_cast<float>(codes[i]), directions.values[study->cells[i]]) << "cell " << i;
  }
};

TEST_F(LiveEngine, GivesTheMapsOfARunForALabel) {
  expectSameAsRun(loaded(), askFor(label(1)), 2);
}

TEST_F(LiveEngine, GivesTheMapsOfARunWithMoreSurrogatesThanADraft) {
  expectSameAsRun(loadedWith(300), askFor(label(1)), 2);
}

TEST_F(LiveEngine, ADraftTakes250SurrogatesAtMost) {
  const auto thresholds = [&](int surrogates) {
    live::Engine engine(loadedWith(surrogates), 1);
    std::vector<float> found;
    for (const live::LiveMap& map : engine.compute(askFor(label(1)), Care::kDraft, kNeverCancelled).maps)
      for (const tav::MapThreshold& threshold : map.thresholds) found.push_back(threshold.threshold);
    return found;
  };
  const std::vector<float> atMost = thresholds(250);
  EXPECT_EQ(thresholds(300), atMost);
  EXPECT_NE(thresholds(249), atMost);
}

TEST_F(LiveEngine, GivesTheMapsOfARunForASphere) {
  const auto study = loaded();
  expectSameAsRun(study, askFor(sphere(*study, {5, 5, 4}, 5)), 3);
}

TEST_F(LiveEngine, GivesTheMapsOfARunForADrawing) {
  const auto study = loaded();
  expectSameAsRun(study, askFor(drawing({study->cells[100], study->cells[101], study->cells[140]})), 1);
}

TEST_F(LiveEngine, GivesTheMapsOfARunForBlocksAndAHigherOrder) {
  const auto study = loaded();
  live::Ask ask = askFor(label(2), "face");
  ask.order = 3;
  ask.draws = 5;
  expectSameAsRun(study, ask, 2);
}

TEST_F(LiveEngine, GivesTheMapsOfARunWithDropsAndCosines) {
  expectSameAsRun(loaded("high_pass = 100\n"), askFor(label(1)), 2);
}

TEST_F(LiveEngine, DoesNotDependOnThreadsOrWhatWasAskedBefore) {
  const auto study = loaded();
  live::Engine one(study, 1), three(study, 3);
  const live::Ask ask = askFor(label(3));
  static_cast<void>(three.compute(askFor(label(1)), Care::kFull, kNeverCancelled));
  const auto a = one.compute(ask, Care::kFull, kNeverCancelled),
             b = three.compute(ask, Care::kFull, kNeverCancelled);
  ASSERT_EQ(a.maps.size(), 4U);
  for (std::size_t m = 0; m < 4; ++m) {
    EXPECT_EQ(a.maps[m].values, b.maps[m].values);
    EXPECT_TRUE(sameBits(a.maps[m].p, b.maps[m].p));
  }
}

TEST_F(LiveEngine, ADraftHasTheFinalValuesAndNoP) {
  const auto study = loaded();
  live::Engine engine(study, 2);
  const live::Ask ask = askFor(label(1));
  const auto full = engine.compute(ask, Care::kFull, kNeverCancelled),
             draft = engine.compute(ask, Care::kDraft, kNeverCancelled);
  for (std::size_t m = 0; m < full.maps.size(); ++m) {
    EXPECT_EQ(full.maps[m].values, draft.maps[m].values);
    EXPECT_TRUE(draft.maps[m].p.empty());
    EXPECT_EQ(full.maps[m].thresholds.size(), draft.maps[m].thresholds.size());
  }
}

TEST_F(LiveEngine, FindsThatRegionADrivesRegionB) {
  const auto study = loaded();
  live::Engine engine(study, 2);
  const auto maps = engine.compute(askFor(label(1)), Care::kFull, kNeverCancelled);
  const auto codes = engine.directions(maps, kNeverCancelled);
  std::size_t leads = 0;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const int place = study->plan.places->labelAt(study->cells[i]);
    if (codes[i] == static_cast<std::uint8_t>(study::DirectionCode::kReferenceLeads) && place == 2) ++leads;
  }
  EXPECT_GE(leads, static_cast<std::size_t>(small_study::regionVoxels()) / 2);
}

TEST_F(LiveEngine, NullValuesAreTheDrawsOfTheLastFullResult) {
  const auto study = loaded();
  live::Engine engine(study, 2);
  const live::Ask ask = askFor(label(1));
  EXPECT_TRUE(engine.nullValues(ask, 10, tav::REF2VOX).empty());
  const auto maps = engine.compute(ask, Care::kFull, kNeverCancelled);
  EXPECT_TRUE(engine.nullValues(askFor(label(2)), 10, tav::REF2VOX).empty());
  // p of the observed values, counted by hand among the draws of all cells.
  const live::LiveMap& map = *maps.of(tav::REF2VOX);
  std::size_t all = 0, reaching = 0;
  for (std::size_t i = 0; i < study->cells.size(); ++i) {
    for (const float value : engine.nullValues(ask, i, tav::REF2VOX)) {
      if (value == 0) continue;
      ++all;
      reaching += value >= map.values[50] ? 1U : 0U;
    }
  }
  EXPECT_GT(all, 19 * study->cells.size());  // few are 0
  EXPECT_EQ(map.p[50],
            static_cast<float>((1.0 + static_cast<double>(reaching)) / (1.0 + static_cast<double>(all))));
}

TEST_F(LiveEngine, StopsWhenItIsCalledOffAndGoesOnAfterwards) {
  const auto study = loaded();
  live::Engine engine(study, 2);
  const live::Ask ask = askFor(label(1));
  const auto before = engine.compute(ask, Care::kFull, kNeverCancelled);
  const std::atomic<bool> cancelled = true;
  EXPECT_THROW(static_cast<void>(engine.compute(ask, Care::kFull, cancelled)), tav::Cancelled);
  EXPECT_THROW(static_cast<void>(engine.compute(ask, Care::kDraft, cancelled)), tav::Cancelled);
  EXPECT_THROW(static_cast<void>(engine.directions(before, cancelled)), tav::Cancelled);
  EXPECT_TRUE(engine.nullValues(ask, 10, tav::REF2VOX).empty()) << "of a result that never was";
  const auto after = engine.compute(ask, Care::kFull, kNeverCancelled);
  EXPECT_EQ(before.maps[0].values, after.maps[0].values);
  EXPECT_TRUE(sameBits(before.maps[0].p, after.maps[0].p));
}

TEST_F(LiveEngine, RefusesWhatIsNoReferenceInWords) {
  const auto study = loaded();
  live::Engine engine(study, 1);
  const auto refusal = [&](const live::Reference& reference, const std::string& condition = "whole") {
    return messageOf<study::InputError>([&] {
      static_cast<void>(engine.compute(askFor(reference, condition), Care::kDraft, kNeverCancelled));
    });
  };
  EXPECT_NE(refusal(label(77)).find("label 77 is not in"), std::string::npos) << refusal(label(77));
  EXPECT_NE(refusal(drawing({})).find("no voxel is drawn"), std::string::npos);
  EXPECT_NE(refusal(drawing({1'000'000})).find("outside the runs' grid"), std::string::npos);
  EXPECT_NE(refusal(sphere(*study, {5, 5, 4}, 0)).find("radius above 0"), std::string::npos);
  EXPECT_NE(refusal(sphere(*study, {500, 5, 4}, 4)), "");
  EXPECT_NE(refusal(label(1), "house").find("there is no condition 'house'"), std::string::npos);
}

}  // namespace
