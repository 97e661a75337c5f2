// Several computations in one process: each has the results that it has alone.
#include <barrier>
#include <bit>
#include <filesystem>
#include <thread>

#include "tests/tav/run_fixture.h"

namespace {

// Everything that a run leaves: values as bits, so that NaN equals itself.
struct Results {
  int status = 0;
  std::string errors;
  std::vector<std::string> names;
  std::vector<std::vector<std::uint32_t>> values;
  std::vector<std::vector<float>> thresholds;
  std::map<std::string, std::string> logs;
  std::vector<std::string> lines;
  std::vector<int> percents;

  bool operator==(const Results&) const = default;
};

struct Job {
  tav::TAV_Pars request;
  tav::RunOptions options;
};

Results resultsOf(const RecordingStore& store, const Listener& listener, int status, std::string errors) {
  Results results{status, std::move(errors), {}, {}, {}, store.logs, listener.lines, listener.percents};
  for (const RecordingStore::Saved& saved : store.saved) {
    for (const tav::MemoryStore::Map& map : saved.maps) {
      results.names.push_back(saved.path + " " + map.header.name);
      results.thresholds.push_back(map.header.thresholds);
      auto& bits = results.values.emplace_back();
      for (const float value : map.values) bits.push_back(std::bit_cast<std::uint32_t>(value));
    }
  }
  return results;
}

// Meets its like at every step of progress, so that computations on several threads pass through their
// voxels side by side however short they are.
class MeetingListener : public Listener {
 public:
  // meeting: null for a computation alone.
  explicit MeetingListener(std::barrier<>* meeting) : meeting_(meeting) {}
  ~MeetingListener() override {
    if (meeting_ != nullptr) meeting_->arrive_and_drop();
  }
  MeetingListener(const MeetingListener&) = delete;
  MeetingListener& operator=(const MeetingListener&) = delete;
  void onProgress(int percent) override {
    if (meeting_ != nullptr) meeting_->arrive_and_wait();
    Listener::onProgress(percent);
  }

 private:
  std::barrier<>* meeting_;
};

// The request belongs to one run at a time, so each run has a copy.
Results compute(const Job& job, std::barrier<>* meeting = nullptr) {
  const tav::TAV_Pars request = job.request;
  RecordingStore store;
  MeetingListener listener(meeting);
  std::ostringstream errors;
  tav::Computer computer(job.options, &listener, &store);
  const int status = computer.computeTAVs(request, errors);
  return resultsOf(store, listener, status, errors.str());
}

class ConcurrentRuns : public RunTest {
 protected:
  ConcurrentRuns() {
    jobs.push_back(makeJob(1, {}));
    jobs.push_back(makeJob(4, calibrated()));
    jobs.push_back(makeJob(2, {.timeBase = 300, .kernel = "reference"}));
    jobs.push_back(makeJob(3, {.nullDraws = 3, .timeBase = 4, .kernel = "scalar"}));
  }

  // Three references and two conditions on files whose names are the same in every job.
  Job makeJob(int order, tav::RunOptions options) {
    const std::string name = std::to_string(jobs.size());
    std::filesystem::create_directory(folder.file(name));
    writeNoise(name + "/a.vtc", spec, static_cast<unsigned>(order) * 10);
    writeNoise(name + "/b.vtc", spec, static_cast<unsigned>(order) * 10 + 1);
    options.vtcFolder = folder.file(name);
    Job job{requestOn(spec), options};
    job.request.arOrder = order;
    job.request.showVerboseProgress = true;
    job.request.vois.clear();
    for (std::size_t i = 0; i < voxels.size(); ++i)
      job.request.vois.push_back(
          {"voi" + std::to_string(i), static_cast<std::int32_t>(i), 1, voxels[i].data(), 0});
    addCondition(job.request, "rest", "a.vtc", {{1, 80}});
    addCondition(job.request, "task", "b.vtc", {{1, 35}, {41, 80}});
    return job;
  }

  static tav::RunOptions calibrated() {
    tav::RunOptions options;
    options.fitForm = tav::FitForm::kLeastSquares;
    options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
    options.nullDraws = 5;
    options.thresholdRule = tav::ThresholdRule::kStepUp;
    options.searchOutsideReference = true;
    options.voiTimeBases = {11, 22, 33};
    return options;
  }

  fakes::VtcSpec spec = fakes::cellGrid(6, 5, 4, 80);
  const std::vector<std::array<std::int32_t, 3>> voxels = {{0, 0, 0}, {3, 2, 1}, {5, 4, 3}};
  std::vector<Job> jobs;
};

}  // namespace

TEST_F(ConcurrentRuns, OnThreadsOfTheirOwnGiveWhatEachGivesAlone) {
  std::vector<Results> alone;
  for (const Job& job : jobs) alone.push_back(compute(job));
  for (const Results& results : alone) {
    ASSERT_EQ(results.status, tav::kSuccess) << results.errors;
    ASSERT_EQ(results.values.size(), 3U * 2U * 6U);
    ASSERT_EQ(std::count(alone.begin(), alone.end(), results), 1) << "the jobs differ";
  }
  for (int round = 0; round < 3; ++round) {
    std::vector<Results> together(jobs.size());
    std::barrier<> meeting(static_cast<std::ptrdiff_t>(jobs.size()));
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < jobs.size(); ++i)
      threads.emplace_back([&, i] { together[i] = compute(jobs[i], &meeting); });
    threads.clear();  // waits for them
    for (std::size_t i = 0; i < jobs.size(); ++i) EXPECT_EQ(together[i], alone[i]) << "job " << i;
  }
}

TEST_F(ConcurrentRuns, TakenInTurnsOnOneThreadGiveWhatEachGivesAlone) {
  const Job& job = jobs[0];
  const auto begin = [&](tav::Computer& computer) {
    std::ostringstream log;
    ASSERT_EQ(computer.Init(job.request, errors), tav::kSuccess);
    ASSERT_EQ(computer.simSurrogateVOITCs(job.request, log, errors), tav::kSuccess);
  };
  const auto nulls = [&](tav::Computer& computer, std::size_t cond) {
    std::ostringstream log;
    EXPECT_EQ(
        computer.compVOIConditionTAVs(job.request.vois[0], job.request.conds[cond], job.request, log, errors),
        tav::kSuccess);
    const float* const first = computer.rawMaps2->values(0);
    return std::vector<float>(first, first + computer.rawMaps2->nrOfVoxels());
  };
  tav::Computer alone(job.options);
  begin(alone);
  const std::vector<std::vector<float>> expected = {nulls(alone, 0), nulls(alone, 1)};

  tav::RunOptions other = job.options;
  other.timeBase = 99;
  const tav::TAV_Pars request = job.request;
  tav::Computer one(job.options), two(other);
  begin(one);
  EXPECT_EQ(nulls(one, 0), expected[0]);
  std::ostringstream log;
  ASSERT_EQ(two.Init(request, errors), tav::kSuccess);
  ASSERT_EQ(two.simSurrogateVOITCs(request, log, errors), tav::kSuccess);
  ASSERT_EQ(two.compVOIConditionTAVs(request.vois[0], request.conds[0], request, log, errors), tav::kSuccess);
  EXPECT_EQ(nulls(one, 1), expected[1]);
}

TEST_F(ConcurrentRuns, RefuseAComputePathThatThereIsNot) {
  jobs[0].options.kernel = "fastest";
  const Results results = compute(jobs[0]);
  EXPECT_EQ(results.status, tav::kInvalidParameters);
  EXPECT_THAT(results.errors,
              ::testing::StartsWith("The compute path is 'fastest', which is no compute path of "
                                    "this program. This computer runs: reference, "));
}
