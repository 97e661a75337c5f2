// tavmap worker: one piece of a study's work, from a job file. The other verbs start it; it serves by
// hand, too, for a job that was carried to another machine or is to be looked at alone.
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <functional>
#include <iostream>
#include <memory>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/study_options.h"
#include "formats/file_error.h"
#include "request/problem.h"
#include "study/worker_channel.h"
#include "study/worker_job.h"

namespace app {
namespace {

struct WorkerArguments {
  std::string job;
  int reportTo = -1;
};

// References take blocks of the same sizes again and again; given back to the system in between, their
// pages would have to be cleared each time.
void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 32 << 20);  // the most that the library takes
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

// Results to standard output, progress to standard error, failures as those of every verb.
int workByHand(const std::string& job) {
  const auto leave = [](int) { _exit(kInterrupted); };
  std::signal(SIGINT, leave);
  std::signal(SIGTERM, leave);
  int percent = -1;
  const std::string result = study::carryOut(study::readJob(job), softwareVersion(), [&](double fraction) {
    const int now = static_cast<int>(fraction * 100);
    if (now > percent) std::cerr << (percent = now) << " %\n";
  });
  if (!result.empty()) std::cout << result << "\n";
  return kDone;
}

int tell(study::WorkerChannel& channel, bool inputProblem, const char* why) {
  channel.send(inputProblem ? study::WorkerWord::kWrongInput : study::WorkerWord::kFailed, why);
  return inputProblem ? kWrongInput : kFailed;
}

int workFor(study::WorkerChannel& channel, const std::string& job) {
  try {
    const std::string result = study::carryOut(study::readJob(job), softwareVersion(),
                                               [&](double fraction) { channel.progress(fraction); });
    channel.send(study::WorkerWord::kResult, result);
    channel.send(study::WorkerWord::kDone);
    return kDone;
  } catch (const study::InputError& error) {
    return tell(channel, true, error.what());
  } catch (const formats::FileError& error) {
    return tell(channel, error.fault() == formats::Fault::kInput, error.what());
  } catch (const std::exception& error) {
    return tell(channel, false, error.what());
  }
}

int work(const WorkerArguments& arguments) {
  keepFreedMemory();
  if (arguments.reportTo < 0) return workByHand(arguments.job);
  prctl(PR_SET_NAME, "tavmap");  // it was started under another name, see kThisProgram
  study::WorkerChannel channel(arguments.reportTo);
  return workFor(channel, arguments.job);
}

}  // namespace

void addWorkerCommand(CLI::App& program) {
  const auto arguments = std::make_shared<WorkerArguments>();
  CLI::App* command = program.add_subcommand("worker", "Carry out one job of a study (internal)");
  command->group("");  // not in the list of verbs
  command->add_option("job", arguments->job, "Job file, as a study writes it")->required();
  command->add_option("--report-to", arguments->reportTo, "Descriptor of the pipe to report on")
      ->check(CLI::Range(3, 1 << 20));
  command->footer(
      "Plans the job's request again, makes sure that nothing has changed, and does the work.\n"
      "Exit codes: 0 done, 1 failed, 2 wrong usage or input, 130 interrupted.");
  command->callback([arguments] { leaveWith([&] { return work(*arguments); }); });
}

}  // namespace app
