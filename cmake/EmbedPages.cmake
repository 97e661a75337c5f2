# Writes OUT, a C++ file with the texts of the files STYLE (a list, one after the other) and SCRIPT (may be empty).
set(style "")
foreach(part IN LISTS STYLE)
  file(READ "${part}" text)
  string(APPEND style "${text}")
endforeach()
set(script "")
if(SCRIPT)
  file(READ "${SCRIPT}" script)
endif()
file(WRITE "${OUT}" "// Made from web/ by cmake/EmbedPages.cmake.
#include \"report/page_assets.h\"

namespace report {

std::string_view pageStyle() {
  return R\"tavmap(${style})tavmap\";
}

std::string_view pageScript() {
  return R\"tavmap(${script})tavmap\";
}

}  // namespace report
")
