#include <fl/filesystem.hpp>
#include <fl/i18n.hpp>

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace fl::filesystem {

namespace detail {

namespace {
using traits = path_traits<wchar_t, char16_t>;

bool isSeparator(char16_t c) {
    return c == traits::separator || c == traits::foreign_separator;
}
}  // namespace

std::u16string make_native_form(const std::u16string& text, bool native) {
    if (!native) {
        return text;
    }
    std::u16string result;
    result.reserve(text.size());
    for (char16_t c : text) {
        if (!isSeparator(c)) {
            result.push_back(c);
        } else if (result.empty() || result.back() != traits::separator) {
            result.push_back(traits::separator);
        }
    }
    if (result.size() > 1 && result.back() == traits::separator) {
        result.pop_back();
    }
    return result;
}

void concatenate_pathname(std::u16string& base, const std::u16string& relative, bool native) {
    std::u16string tail = make_native_form(relative, native);
    std::size_t skip = 0;
    while (skip < tail.size() && isSeparator(tail[skip])) {
        ++skip;
    }
    if (skip == tail.size()) {
        return;
    }
    if (!base.empty() && !isSeparator(base.back())) {
        base.push_back(traits::separator);
    }
    base.append(tail, skip, std::u16string::npos);
}

}  // namespace detail

namespace {

// The folder above the one that holds the shared object of this function, resolved to an
// absolute path; empty if the loader cannot tell.
std::string folderAboveOwnLibrary() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&folderAboveOwnLibrary), &info) == 0 ||
        info.dli_fname == nullptr) {
        return {};
    }
    std::unique_ptr<char, void (*)(void*)> resolved(realpath(info.dli_fname, nullptr), std::free);
    if (!resolved) {
        return {};
    }
    std::string folder = resolved.get();
    for (int up = 0; up < 2; ++up) {
        auto slash = folder.rfind('/');
        folder.erase(slash == 0 ? 1 : slash);
    }
    return folder;
}

}  // namespace

std::u16string get_install_path() {
    if (const char* root = std::getenv("KELDOR_INSTALL_ROOT"); root != nullptr && *root != '\0') {
        return i18n::utf8_to_ustring(root);
    }
    return detail::make_native_form(i18n::utf8_to_ustring(folderAboveOwnLibrary()), true);
}

std::string to_utf8(const path& p) {
    return i18n::ustring_to_utf8(p.text());
}

}  // namespace fl::filesystem
