#include "report/page.h"

#include "report/html.h"
#include "report/page_assets.h"

namespace report {
namespace {

// Nothing is loaded from anywhere.
constexpr const char* kPolicy =
    "default-src 'none'; img-src data:; style-src 'unsafe-inline'; script-src 'unsafe-inline'; base-uri "
    "'none'; "
    "form-action 'none'";

std::string head(const std::string& title) {
  return element(
      "head", single("meta", {{"charset", "utf-8"}}) +
                  single("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", kPolicy}}) +
                  single("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
                  single("meta", {{"name", "color-scheme"}, {"content", "light dark"}}) +
                  element("title", text(title)) + element("style", pageStyle()));
}

// A page of one section needs none, and has the width for its table.
std::string contents(const PageParts& parts) {
  if (parts.contents.size() < 2) return "";
  std::string items;
  for (const auto& [id, title] : parts.contents)
    items += element("li", element("a", {{"href", "#" + id}}, title));
  return element("nav", {{"class", "contents"}, {"aria-label", "Contents"}}, element("ul", items));
}

// "</script>" inside a text of JSON would end its element.
std::string insideScript(std::string json) {
  for (std::size_t at = 0; (at = json.find('<', at)) != std::string::npos; at += 6)
    json.replace(at, 1, "\\u003c");
  return json;
}

std::string scriptOf(const PageParts& parts) {
  if (pageScript().empty()) return "";
  std::string html = parts.volumes;
  if (!parts.data.empty())
    html +=
        element("script", {{"type", "application/json"}, {"id", "tavmap-data"}}, insideScript(parts.data));
  return html + element("script", pageScript());
}

}  // namespace

std::string page(const PageParts& parts) {
  const std::string header = element(
      "header", element("button", {{"type", "button"}, {"class", "theme script-only"}}, "Light or dark") +
                    element("h1", text(parts.title)) + parts.lead);
  return "<!DOCTYPE html>\n" +
         element(
             "html", {{"lang", "en"}, {"class", "no-script"}},
             head(parts.title) + "\n" +
                 element("body", header + contents(parts) + element("main", parts.body) + scriptOf(parts))) +
         "\n";
}

}  // namespace report
