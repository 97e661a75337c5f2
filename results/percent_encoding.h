// Paths in URIs (RFC 3986, section 2.1).
#ifndef TAVMAP_RESULTS_PERCENT_ENCODING_H
#define TAVMAP_RESULTS_PERCENT_ENCODING_H

#include <string>

namespace study {

// Every byte as "%20" and the like that is neither unreserved nor a slash.
[[nodiscard]] std::string percentEncoded(const std::string& path);
// The other way round. A percent sign without two hexadecimal digits behind it stays.
[[nodiscard]] std::string percentDecoded(const std::string& text);

}  // namespace study

#endif
