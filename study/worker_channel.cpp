#include "study/worker_channel.h"

#include <fmt/core.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>

#include "request/problem.h"

namespace study {
namespace {

constexpr std::array<std::string_view, 5> kWords = {"progress", "result", "wrong-input", "failed", "done"};
constexpr std::size_t kLongestHead = 32;  // a word, a blank and the digits of a length

void writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

struct Head {
  WorkerWord word;
  std::size_t length;
};

std::optional<Head> parseHead(std::string_view line) {
  for (std::size_t i = 0; i < kWords.size(); ++i) {
    if (!line.starts_with(kWords[i]) || line.substr(kWords[i].size(), 1) != " ") continue;
    const char* const end = line.data() + line.size();
    std::size_t length = 0;
    const auto [at, error] = std::from_chars(line.data() + kWords[i].size() + 1, end, length);
    if (error == std::errc() && at == end) return Head{static_cast<WorkerWord>(i), length};
  }
  return std::nullopt;
}

}  // namespace

void WorkerChannel::send(WorkerWord word, std::string_view text) {
  std::string message(kWords[static_cast<std::size_t>(word)]);
  message += fmt::format(" {}\n", text.size());
  message += text;
  writeAll(fd_, message);
}

void WorkerChannel::progress(double fraction) {
  send(WorkerWord::kProgress, std::to_string(fraction));
}

std::optional<WorkerMessage> MessageReader::next() {
  const std::size_t end = inbox_.find('\n');
  if (end == std::string::npos && inbox_.size() < kLongestHead) return std::nullopt;
  // However the bytes come, a head that is too long is none.
  const auto head = end < kLongestHead ? parseHead(std::string_view(inbox_).substr(0, end)) : std::nullopt;
  if (!head) throw RunError("the worker process sent what is no message");
  const std::size_t begin = end + 1;
  if (inbox_.size() - begin < head->length) return std::nullopt;
  WorkerMessage message{head->word, inbox_.substr(begin, head->length)};
  inbox_.erase(0, begin + head->length);
  return message;
}

}  // namespace study
