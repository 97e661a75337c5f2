#include "host/run_length.h"

#include "formats/file_error.h"
#include "formats/file_kinds.h"
#include "formats/vtc_export.h"
#include "host/html_text.h"
#include "host/workspace.h"

namespace host {
namespace {

std::string lastLine(const std::string& text) {
  const std::size_t end = text.rfind('\n');
  return end == std::string::npos ? text : text.substr(end + 1);
}

int volumesOf(const std::string& vtc) {
  try {
    return formats::readVtcFileHeader(vtc).nrOfVolumes;
  } catch (const formats::FileError&) {
    return 0;  // the plug-in says what is wrong with it
  }
}

}  // namespace

int volumesOfRunIn(const std::string& html, const Workspace& workspace) {
  const std::string named = lastLine(dialogText(html));
  if (formats::isVtcName(named)) return volumesOf(named);
  return workspace.vtc() ? workspace.vtc()->header.nrOfVolumes : 0;
}

}  // namespace host
