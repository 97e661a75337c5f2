// Atlas descriptions of FSL: XML with <label index="0" x= y= z=>Name</label> below <atlas><data>.
//
// Their indices count from 0. Of a probability atlas they are the volumes, and the summary image of the
// most probable labels holds index + 1, since 0 is background there; of an atlas of type "Label" they are
// the image's values as they stand.
#include <fmt/core.h>
#include <tinyxml2.h>

#include <algorithm>
#include <cctype>
#include <limits>

#include "formats/label_forms.h"

namespace formats {
namespace {

using tinyxml2::XMLElement;

constexpr const char* kFslExample = "Write <label index=\"0\" x=\"1\" y=\"2\" z=\"3\">Name</label>";

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  std::transform(small.begin(), small.end(), small.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return small;
}

bool isXml(const LabelText& text) {
  return text.lines()[0].text.starts_with('<');
}

// The first line of an XML file may say that its letters are Latin 1, as those of FSL do.
bool isLatin1(const LabelText& text) {
  const std::string head = inSmallLetters(text.lines()[0].text);
  return head.starts_with("<?xml") && head.find("iso-8859-1") != std::string::npos;
}

std::string inUtf8(std::string_view latin1) {
  std::string text;
  for (const char c : latin1) {
    const auto letter = static_cast<unsigned char>(c);
    if (letter < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0U | (letter >> 6U));
      text += static_cast<char>(0x80U | (letter & 0x3FU));
    }
  }
  return text;
}

std::size_t fslLine(int line) {
  return static_cast<std::size_t>(std::max(line, 1));
}

const XMLElement* fslChild(const XMLElement* element, const char* name) {
  return element == nullptr ? nullptr : element->FirstChildElement(name);
}

// What to add to an index.
std::int32_t firstValue(const XMLElement* atlas) {
  const XMLElement* type = fslChild(fslChild(atlas, "header"), "type");
  const bool hasValues =
      type != nullptr && type->GetText() != nullptr && inSmallLetters(type->GetText()) == "label";
  return hasValues ? 0 : 1;
}

Label fslLabel(const LabelText& text, const XMLElement& element, std::int32_t first) {
  const char* attribute = element.Attribute("index");
  const auto index = attribute == nullptr ? std::nullopt : labelNumber(attribute);
  if (!index || *index < 0 || *index == std::numeric_limits<std::int32_t>::max())
    text.fail(fslLine(element.GetLineNum()), "a label has no index that is a whole number from 0",
              kFslExample);
  const char* name = element.GetText();
  return {*index + first, name == nullptr ? "" : name, std::nullopt};
}

void requireXml(const LabelText& text, const tinyxml2::XMLDocument& document) {
  if (!document.Error()) return;
  text.fail(fslLine(document.ErrorLineNum()), "the XML is damaged", "Give a whole atlas description of FSL");
}

LabelTable parseFsl(const LabelText& text) {
  tinyxml2::XMLDocument document(true, tinyxml2::COLLAPSE_WHITESPACE);
  const std::string content = isLatin1(text) ? inUtf8(text.whole()) : std::string(text.whole());
  document.Parse(content.data(), content.size());
  requireXml(text, document);
  const XMLElement* atlas = document.FirstChildElement("atlas");
  const XMLElement* data = fslChild(atlas, "data");
  if (fslChild(data, "label") == nullptr)
    text.fail(1, "the XML has no <atlas> with <data> and a <label>", kFslExample);
  LabelCollector labels(text);
  for (const XMLElement* e = fslChild(data, "label"); e != nullptr; e = e->NextSiblingElement("label"))
    labels.add(fslLine(e->GetLineNum()), fslLabel(text, *e, firstValue(atlas)));
  return labels.take();
}

}  // namespace

LabelForm fslForm() {
  return {"an FSL atlas description (XML)", isXml, parseFsl};
}

}  // namespace formats
