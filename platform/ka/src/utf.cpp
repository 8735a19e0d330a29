// UTF-8 and UTF-16 conversions for char arrays, names and the warning text.
#include <boost/locale/encoding_utf.hpp>

#include "array_record.hpp"

std::string ka::detail::toUtf8(std::u16string_view text) {
    return boost::locale::conv::utf_to_utf<char>(text.data(), text.data() + text.size());
}

std::u16string ka::detail::toUtf16(std::string_view text) {
    return boost::locale::conv::utf_to_utf<char16_t>(text.data(), text.data() + text.size());
}
