# Writes OUT, a C++ file with the texts of STYLE and SCRIPT. SCRIPT may be empty.
file(READ "${STYLE}" style)
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
