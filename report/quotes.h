// Numbers quoted from the files that a report is made from: each carries where it stands there, so that a
// reader, or a test, can look it up.
#ifndef TAVMAP_REPORT_QUOTES_H
#define TAVMAP_REPORT_QUOTES_H

#include <string>

#include "formats/json_file.h"

namespace report {

enum class Digits {
  kAll,    // as the file has it
  kFour,   // significant digits
  kTenth,  // one behind the point
};

// A JSON file, or a place in it.
class Quotes {
 public:
  // The document must live as long. file: its name in the output folder.
  Quotes(const formats::Json& document, std::string file);

  // way: such as "/Maps/3", below this place.
  [[nodiscard]] Quotes at(const std::string& way) const;
  [[nodiscard]] bool has(const std::string& way) const;
  // <data value="13.0103035" data-from="FILE#/Conditions/0/Peak/Value">13.01</data>; "n/a" for null and for
  // what is not there.
  [[nodiscard]] std::string number(const std::string& way, Digits digits = Digits::kAll) const;

 private:
  [[nodiscard]] const formats::Json* find(const std::string& way) const;
  const formats::Json* document_;
  std::string file_, place_;
};

// The same for a cell of a table: data-from="#row/column", rows from 1 below the header, in the file that an
// element around it names in its attribute data-file.
[[nodiscard]] std::string quotedCell(std::size_t row, const std::string& column, const std::string& cell,
                                     Digits digits = Digits::kAll);

}  // namespace report

#endif
