// Path texts of the foundation library, and the installation root of the runtime.
//
// A path is UTF-16 text plus one flag: whether its text is in the platform's native form
// (here: '/' separators, no doubled separators). Operations that combine paths keep that form.
#pragma once

#include <string>
#include <utility>

namespace fl::filesystem {

namespace detail {

template <class NativeChar, class Char>
struct path_traits {
    using char_type = Char;
    using native_char_type = NativeChar;
    static constexpr Char separator = u'/';
    static constexpr Char foreign_separator = u'\\';
};

// `text` with every separator made native and runs of separators folded into one; a trailing
// separator is dropped unless it is the root. With `native` false the text is returned as is.
std::u16string make_native_form(const std::u16string& text, bool native);

// Appends `relative` to `base` with exactly one separator between them. With `native` true the
// appended part is put in native form first.
void concatenate_pathname(std::u16string& base, const std::u16string& relative, bool native);

}  // namespace detail

template <class NativeChar, class Char, class Traits>
class basic_path {
public:
    using string_type = std::basic_string<Char>;
    using traits_type = Traits;

    basic_path() = default;
    explicit basic_path(string_type text, bool native = true)
        : text_(std::move(text)), native_(native) {}

    const string_type& text() const noexcept { return text_; }
    string_type& text() noexcept { return text_; }
    bool native() const noexcept { return native_; }
    bool empty() const noexcept { return text_.empty(); }
    bool is_absolute() const noexcept {
        return !text_.empty() && text_.front() == Traits::separator;
    }

    // Appends a relative path, as concatenate_pathname does, in this path's own form.
    basic_path& operator/=(const string_type& relative) {
        detail::concatenate_pathname(text_, relative, native_);
        return *this;
    }
    friend basic_path operator/(basic_path base, const string_type& relative) {
        base /= relative;
        return base;
    }

    friend bool operator==(const basic_path&, const basic_path&) = default;

private:
    string_type text_;
    bool native_ = true;
};

using path = basic_path<wchar_t, char16_t, detail::path_traits<wchar_t, char16_t>>;

// The installation root of the runtime: the environment variable KELDOR_INSTALL_ROOT if it is
// set and not empty, else the folder above the one that holds this library's shared object
// (a build tree's lib/ folder sits right under its root, as an installed tree's does).
std::u16string get_install_path();

// The UTF-8 text of a path, for the operating system's calls.
std::string to_utf8(const path& p);

}  // namespace fl::filesystem
