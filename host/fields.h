// Text fields of the records that plug-ins and host exchange.
#ifndef TAVMAP_HOST_FIELDS_H
#define TAVMAP_HOST_FIELDS_H

#include <cstddef>
#include <string>

namespace host {

// Copies as much of `text` as the field holds, with a terminating zero, never through the middle
// of a UTF-8 character; the rest of the field is zero.
void fillField(const std::string& text, char* field, std::size_t bytes);

template <std::size_t kBytes>
void fillField(const std::string& text, char (&field)[kBytes]) {
  fillField(text, field, kBytes);
}

}  // namespace host

#endif
