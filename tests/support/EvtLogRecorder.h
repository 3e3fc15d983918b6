#pragma once

#include <string>
#include <utility>
#include <vector>

// A recording stand-in for the four eventlog calls the library makes, linked
// into unit-test executables in place of libevtlog (support/Wrappers.cpp).
namespace evtrec {

struct Event {
  std::string severity;  // the record's description
  std::vector<std::pair<std::string, std::string>> tags;
  std::string Message() const;  // the "msg" tag's text, or ""
};
// Forgets everything recorded; opens (non-null) or closes (null) the host's context.
void Reset(bool contextOpen = true);
const std::vector<Event>& Events();
std::vector<std::string> Reports();  // one "SEVERITY message" per record

}  // namespace evtrec
