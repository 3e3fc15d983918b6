#ifndef VEKTKK_TOOLS_TKK_XMLTEXT_H
#define VEKTKK_TOOLS_TKK_XMLTEXT_H

#include <string>

#include <pugixml.hpp>

namespace tkk {

// A document as UTF-8 text with its XML declaration, indented by two blanks.
std::string XmlText(const pugi::xml_document& doc);

// Adds <name>text</name> (or another element) under `parent`.
pugi::xml_node AddText(pugi::xml_node parent, const char* element, const std::string& text);

// A coordinate or length printed with `decimals` digits after the point.
std::string Decimal(double value, int decimals);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_XMLTEXT_H
