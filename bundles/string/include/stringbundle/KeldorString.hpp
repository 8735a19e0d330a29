// The engine's string object as the reference string bundle knows it: one UTF-16 text. The
// engine and the language are closed elsewhere; tests and the demo make their engine strings
// with this definition, so that stringToKaArray of the reference bundle has something to read.
#pragma once

#include <string>
#include <utility>

namespace Norvane::String {

class String {
public:
    explicit String(std::u16string text) : text_(std::move(text)) {}
    const std::u16string& text() const noexcept { return text_; }

private:
    std::u16string text_;
};

}  // namespace Norvane::String
