#ifndef VEKTKK_TOOLS_TKK_IDENTIFIERS_H
#define VEKTKK_TOOLS_TKK_IDENTIFIERS_H

#include <string>

#include <nlohmann/json.hpp>
#include <vektkk.h>

namespace tkk {

// A track GUID as the tool writes it: 16 hexadecimal digits of its 64-bit
// value.
std::string GuidText(const _UGuidTkk& guid);

// What a track GUID says: {"guid", "date" (UTC, ISO 8601), "maker",
// "development"}.
nlohmann::json DescribeGuid(const _UGuidTkk& guid);

// What a track file name says (the first 8 characters of its base name;
// a directory and ".tkk" may come with it): {"name", "date", "maker",
// "development"}, or null when it is not a GUID file name.
nlohmann::json DescribeFileName(const std::string& path);

// Decodes either a GUID (16 hexadecimal digits) or a file name. Throws
// BadInput when the text is neither.
nlohmann::json DecodeIdentifier(const std::string& text);

// A packed date as the tool writes it: UTC, ISO 8601.
std::string DateText(const _UDataOraTkk& date);

// A new track GUID and a new file name for the given flags.
nlohmann::json NewIdentifiers(bool maker, bool dev);

}  // namespace tkk

#endif  // VEKTKK_TOOLS_TKK_IDENTIFIERS_H
