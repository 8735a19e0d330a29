// Text conversions between the runtime's UTF-16 strings and UTF-8.
// All three throw std::invalid_argument for input that is not well-formed in its encoding
// (a broken UTF-8 sequence, a lone surrogate) rather than guessing.
#pragma once

#include <string>
#include <string_view>

namespace fl::i18n {

std::u16string utf8_to_ustring(std::string_view utf8);
std::string ustring_to_utf8(std::u16string_view utf16);

// The UTF-8 form of a UTF-16 text for messages and logs.
std::string to_string(std::u16string_view utf16);

}  // namespace fl::i18n
