// What a worker tells whoever started it, and how: messages on a pipe, each "KIND LENGTH\n" and so many
// bytes of text.
//   progress      a number from 0 to 1
//   result        what the work has found; the last one counts
//   wrong-input   the work failed, the request is at fault; the text says why
//   failed        the work failed; the text says why
//   done          the work is done
// The last three end the work. A worker that ends without one of them has died.
#ifndef TAVMAP_STUDY_WORKER_CHANNEL_H
#define TAVMAP_STUDY_WORKER_CHANNEL_H

#include <optional>
#include <string>
#include <string_view>

namespace study {

enum class WorkerWord { kProgress, kResult, kWrongInput, kFailed, kDone };

struct WorkerMessage {
  WorkerWord word = WorkerWord::kDone;
  std::string text;
};

// The worker's end. A reader that has gone is no error: nobody is left to tell.
class WorkerChannel {
 public:
  explicit WorkerChannel(int fd) : fd_(fd) {}  // borrows it
  void send(WorkerWord word, std::string_view text = "");
  void progress(double fraction);

 private:
  int fd_;
};

// The other end: takes bytes as they come, gives whole messages.
class MessageReader {
 public:
  void take(std::string_view bytes) { inbox_ += bytes; }
  // The next whole message. Throws RunError when what came is none.
  std::optional<WorkerMessage> next();

 private:
  std::string inbox_;
};

}  // namespace study

#endif
