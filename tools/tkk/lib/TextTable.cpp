#include "TextTable.h"

#include <algorithm>

namespace tkk {

namespace {

// UTF-8 characters: every byte that does not continue a sequence.
size_t Characters(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

}  // namespace

std::string TextTable(const std::vector<std::vector<std::string>>& rows,
                      const std::vector<bool>& rightAligned) {
  std::vector<size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()), 0);
    for (size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], Characters(row[c]));
  }
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string pad(widths[c] - Characters(row[c]), ' ');
      const bool right = c < rightAligned.size() && rightAligned[c];
      line += (c ? "  " : "") + (right ? pad + row[c] : row[c] + pad);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace tkk
