// Requests as text: what request_file.h reads.
#ifndef TAVMAP_REQUEST_REQUEST_TEXT_H
#define TAVMAP_REQUEST_REQUEST_TEXT_H

#include <string>

#include "request/request.h"

namespace study {

// TOML that parseRequest() reads back to an equal request, but for the lines (see below). Every value
// is written, defaults too; the keys "title" and [datasets] serve this alone. Precondition: a request
// that was read, or made by bidsRequests(), so that every condition has its parts.
[[nodiscard]] std::string requestText(const Request& request);

// The request with no line numbers in it: those of a text belong to that text only.
[[nodiscard]] Request withoutLines(Request request);

}  // namespace study

#endif
