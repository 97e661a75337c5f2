#include "workbench/content_types.h"

#include <array>
#include <string_view>
#include <utility>

namespace workbench {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 10> kTypes{{
    {".html", "text/html; charset=utf-8"},
    {".json", "application/json; charset=utf-8"},
    {".toml", "text/plain; charset=utf-8"},
    {".tsv", "text/plain; charset=utf-8"},
    {".txt", "text/plain; charset=utf-8"},
    {".log", "text/plain; charset=utf-8"},
    {".md", "text/plain; charset=utf-8"},
    {".png", "image/png"},
    {".svg", "image/svg+xml"},
    {".jpg", "image/jpeg"},
}};

}  // namespace

std::string contentTypeOf(const std::filesystem::path& file) {
  const std::string extension = file.extension().string();
  for (const auto& [end, type] : kTypes)
    if (extension == end) return std::string(type);
  return "application/octet-stream";
}

}  // namespace workbench
