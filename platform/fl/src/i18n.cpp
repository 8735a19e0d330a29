#include <fl/i18n.hpp>

#include <boost/locale/encoding_errors.hpp>
#include <boost/locale/encoding_utf.hpp>

#include <stdexcept>

namespace fl::i18n {

namespace {

template <class To, class From>
std::basic_string<To> convert(std::basic_string_view<From> text, const char* what) {
    try {
        return boost::locale::conv::utf_to_utf<To>(text.data(), text.data() + text.size(),
                                                   boost::locale::conv::stop);
    } catch (const boost::locale::conv::conversion_error&) {
        throw std::invalid_argument(what);
    }
}

}  // namespace

std::u16string utf8_to_ustring(std::string_view utf8) {
    return convert<char16_t>(utf8, "invalid UTF-8 text");
}

std::string ustring_to_utf8(std::u16string_view utf16) {
    return convert<char>(utf16, "invalid UTF-16 text");
}

std::string to_string(std::u16string_view utf16) {
    return ustring_to_utf8(utf16);
}

}  // namespace fl::i18n
