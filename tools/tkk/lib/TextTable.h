#ifndef VEKTKK_TOOLS_TKK_TEXTTABLE_H
#define VEKTKK_TOOLS_TKK_TEXTTABLE_H

#include <string>
#include <vector>

namespace tkk {

// Rows of cells printed as aligned columns, two blanks apart, the first row
// being the heading. Widths count characters, not bytes, so that names such
// as "Nürburgring" keep the columns straight. Cells of `rightAligned`
// columns (numbers) are aligned to the right.
std::string TextTable(const std::vector<std::vector<std::string>>& rows,
                      const std::vector<bool>& rightAligned = {});

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_TEXTTABLE_H
