// Requests and replies of the HTTP library as ours, and back.
#ifndef TAVMAP_WORKBENCH_HTTP_CONVERSION_H
#define TAVMAP_WORKBENCH_HTTP_CONVERSION_H

#include <httplib.h>

#include <cstddef>
#include <string>

#include "workbench/access_guard.h"
#include "workbench/exchange.h"

namespace workbench {

[[nodiscard]] RequestHead headOf(const httplib::Request& from);
[[nodiscard]] Request requestOf(const httplib::Request& from);
// As the head says it; 0 when it says nothing that is a number.
[[nodiscard]] std::size_t lengthOfBody(const httplib::Request& from);
// What the library would do by itself and is not wanted: parts of files, which can be asked for many times over, and
// compression, which takes longer than a loopback needs for the whole.
void leaveOutExtras(httplib::Request& request);

void giveReply(Reply reply, httplib::Response& to);
// A reply of the library's own, such as 400 for what is no HTTP, in our form.
void explainStatus(httplib::Response& to);
// The whole of a reply 503, as it is sent.
[[nodiscard]] std::string tooManyText();

}  // namespace workbench

#endif
