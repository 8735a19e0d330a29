// UTF-8 and UTF-16 conversions for char arrays, names and the warning text.
#include <boost/locale/encoding_errors.hpp>
#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

#include "array_record.hpp"

// For showing text: a lone surrogate is left out rather than failing a printout or a warning.
std::string ka::detail::toUtf8(std::u16string_view text) {
    return boost::locale::conv::utf_to_utf<char>(text.data(), text.data() + text.size());
}

// For making a char array: broken UTF-8 is refused, as the runtime's own conversions refuse it,
// since leaving bytes out would make an array of another text than the one asked for.
std::u16string ka::detail::toUtf16(std::string_view text) {
    try {
        return boost::locale::conv::utf_to_utf<char16_t>(text.data(), text.data() + text.size(),
                                                         boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::invalid_argument("invalid UTF-8 text");
    }
}
