// What `tavmap info` says of each kind of file, as JSON; text is made from the same document.
#ifndef TAVMAP_INSPECT_DESCRIBE_H
#define TAVMAP_INSPECT_DESCRIBE_H

#include <string>

#include "formats/json_file.h"

namespace inspect {

struct DescribeOptions {
  std::string labelsPath;  // label image that names the place of a peak; empty: none
  std::string tablePath;   // its table; empty: the one beside it
  double trMs = 2000;      // for joining events
};

// By the file's name and content. Throws formats::FileError.
[[nodiscard]] formats::Json describeFile(const std::string& path, const DescribeOptions& options);

[[nodiscard]] formats::Json describeImage(const std::string& path, const DescribeOptions& options);
[[nodiscard]] formats::Json describeVtc(const std::string& path);
[[nodiscard]] formats::Json describeMapSet(const std::string& path, const DescribeOptions& options);
[[nodiscard]] formats::Json describeVoiList(const std::string& path);
// An events table, a table of volumes or a label table.
[[nodiscard]] formats::Json describeTable(const std::string& path, const DescribeOptions& options);

// "key: value" lines; nested objects and lists are indented, lists of numbers stay on one line.
[[nodiscard]] std::string toReadableText(const formats::Json& document);

}  // namespace inspect

#endif
