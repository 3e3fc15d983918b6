#ifndef VEKTKK_TOOLS_TKK_BADINPUT_H
#define VEKTKK_TOOLS_TKK_BADINPUT_H

#include <stdexcept>

namespace tkk {

// Input or usage the tool cannot work with: a missing file, a track file that
// does not read, a map without an outline, an output folder that is not
// there. what() is one line for the user; the tool exits with status 2.
class BadInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_BADINPUT_H
