#include "XmlText.h"

#include <stdio.h>

#include <sstream>

namespace tkk {

std::string XmlText(const pugi::xml_document& doc) {
  std::ostringstream out;
  doc.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  return out.str();
}

pugi::xml_node AddText(pugi::xml_node parent, const char* element, const std::string& text) {
  pugi::xml_node node = parent.append_child(element);
  node.text().set(text.c_str());
  return node;
}

std::string Decimal(double value, int decimals) {
  char text[64];
  snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

}  // namespace tkk
