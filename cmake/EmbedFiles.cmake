# Writes OUT, a C++ file with the texts of the files FILES (a list, may be empty), for workbench/page_files.h.
set(typeOf.html "text/html; charset=utf-8")
set(typeOf.js "text/javascript; charset=utf-8")
set(typeOf.css "text/css; charset=utf-8")
set(typeOf.svg "image/svg+xml")

set(rows "")
set(count 0)
foreach(file IN LISTS FILES)
  get_filename_component(name "${file}" NAME)
  get_filename_component(extension "${file}" LAST_EXT)
  file(READ "${file}" text)
  string(APPEND rows "    {\"${name}\", \"${typeOf${extension}}\", R\"tavmap(${text})tavmap\"sv},\n")
  math(EXPR count "${count} + 1")
endforeach()
file(WRITE "${OUT}" "// Made from web/ by cmake/EmbedFiles.cmake.
#include \"workbench/page_files.h\"

#include <array>

namespace workbench {
namespace {
using namespace std::string_view_literals;  // whose length is known: nobody counts a megabyte
constexpr std::array<PageFile, ${count}> kPageFiles{{
${rows}}};
}  // namespace

std::span<const PageFile> pageFiles() {
  return kPageFiles;
}

}  // namespace workbench
")
