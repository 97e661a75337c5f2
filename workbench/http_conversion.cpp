#include "workbench/http_conversion.h"

#include <fmt/core.h>

#include <charconv>
#include <chrono>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

#include "workbench/dispatcher.h"
#include "workbench/event_hub.h"

namespace workbench {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 500ms;  // between two looks whether the page is still there
constexpr std::size_t kFilePiece = std::size_t{256} << 10U;

// All values of a header: a second one makes it none that anybody expects.
std::string headerOf(const httplib::Request& from, const char* name) {
  std::string text;
  const auto [first, last] = from.headers.equal_range(name);
  for (auto at = first; at != last; ++at) text += (at == first ? "" : ", ") + at->second;
  return text;
}

// Comments are no events; they find out whether the page is still there.
bool sendEvent(EventStream& events, httplib::DataSink& sink) {
  const std::optional<std::string> event = events.next(kPatience);
  if (!event && events.hasEnded()) {
    sink.done();
    return true;
  }
  const std::string text = event ? fmt::format("data: {}\n\n", *event) : ":\n\n";
  return sink.write(text.data(), text.size());
}

void giveEvents(const std::shared_ptr<EventStream>& events, const std::string& type, httplib::Response& to) {
  to.set_chunked_content_provider(
      type, [events](std::size_t, httplib::DataSink& sink) { return sendEvent(*events, sink); },
      [events](bool) { events->end(); });
}

bool sendPiece(std::ifstream& file, std::size_t length, httplib::DataSink& sink) {
  std::vector<char> piece(std::min(length, kFilePiece));
  file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
  return file.gcount() > 0 && sink.write(piece.data(), static_cast<std::size_t>(file.gcount()));
}

void giveFile(const Reply& reply, httplib::Response& to) {
  const auto file = std::make_shared<std::ifstream>(reply.file, std::ios::binary | std::ios::ate);
  const std::streamoff size = file->tellg();
  if (!*file || size < 0) return giveReply(problemReply(404, "The file cannot be read."), to);
  file->seekg(0);
  if (size == 0) return to.set_content("", reply.type);
  to.set_content_provider(static_cast<std::size_t>(size), reply.type,
                          [file](std::size_t, std::size_t length, httplib::DataSink& sink) {
                            return sendPiece(*file, length, sink);
                          });
}

std::string wordsOf(int status) {
  if (status == 414) return "The address is too long.";
  return fmt::format("This is no request that the workbench understands ({}).", status);
}

}  // namespace

RequestHead headOf(const httplib::Request& from) {
  RequestHead head;
  head.method = from.method;
  head.path = from.path;
  head.host = headerOf(from, "Host");
  head.origin = headerOf(from, "Origin");
  head.cookie = headerOf(from, "Cookie");
  head.token = headerOf(from, "X-Tavmap-Token");
  head.contentLength = headerOf(from, "Content-Length");
  head.contentType = headerOf(from, "Content-Type");
  head.encoding = headerOf(from, "Transfer-Encoding") + headerOf(from, "Content-Encoding");
  return head;
}

Request requestOf(const httplib::Request& from) {
  Request request;
  request.path = from.path;
  request.query = {from.params.begin(), from.params.end()};
  request.body = from.body;
  return request;
}

std::size_t lengthOfBody(const httplib::Request& from) {
  const std::string text = headerOf(from, "Content-Length");
  std::size_t length = 0;
  const auto [at, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  return error == std::errc() ? length : 0;
}

void leaveOutExtras(httplib::Request& request) {
  request.ranges.clear();
  request.headers.erase("Range");
  request.headers.erase("Accept-Encoding");
}

void giveReply(Reply reply, httplib::Response& to) {
  to.status = reply.status;
  for (const auto& [name, value] : securityHeaders(reply)) to.set_header(name, value);
  for (const auto& [name, value] : reply.headers) to.set_header(name, value);
  if (reply.events) return giveEvents(reply.events, reply.type, to);
  if (!reply.file.empty()) return giveFile(reply, to);
  to.body = std::move(reply.body);
  if (!to.body.empty()) to.set_header("Content-Type", reply.type);
}

void explainStatus(httplib::Response& to) {
  if (to.body.empty()) giveReply(problemReply(to.status, wordsOf(to.status)), to);
}

std::string tooManyText() {
  const std::string body = problemReply(503, "Too many connections at a time. Close pages, and try again.").body;
  return fmt::format(
      "HTTP/1.1 503 Service Unavailable\r\nContent-Type: application/json; charset=utf-8\r\n"
      "Content-Length: {}\r\nConnection: close\r\nCache-Control: no-store\r\nRetry-After: 1\r\n\r\n{}",
      body.size(), body);
}

}  // namespace workbench
