// Text that is not well-formed: broken UTF-8 where a flag or a string is made from UTF-8, lone
// surrogates where UTF-16 has to become UTF-8. A conversion refuses it rather than guess; text
// that stays UTF-16 from end to end passes through untouched, and a flag made of it matches
// nothing.
#include <boost/container/small_vector.hpp>

#include <builtin/declare/Module.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/StringTraits.hpp>

#include "BadInput.hpp"

namespace badinput {
namespace {

using types::FlagInputType;
using Holders = boost::container::small_vector<
    std::unique_ptr<const kaArray_tag, matrix::detail::kaDestroy_deleter>, 2>;
using Arrays = std::vector<ka::ArrayPtr>;

const Refusal badUtf8 = refusal<std::invalid_argument>("invalid UTF-8 text");
const Refusal badUtf16 = refusal<std::invalid_argument>("invalid UTF-16 text");
const Refusal noVariant = refusal<NoVariantTakesCall>("builtin function implementation is nullptr");

const std::u16string loneHigh(1, char16_t(0xD800));
const std::u16string loneLow(1, char16_t(0xDC00));

std::string printable(std::string_view bytes) {
    std::string out;
    for (const char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        static const char hex[] = "0123456789abcdef";
        if (c >= 0x20 && c < 0x7f) {
            out += static_cast<char>(c);
        } else {
            out += {'\\', 'x', hex[c >> 4], hex[c & 15]};
        }
    }
    return out;
}
std::string printable(std::u16string_view units) {
    std::string out;
    for (const char16_t u : units) {
        out +=
            u < 0x80 ? std::string(1, static_cast<char>(u)) : "\\u" + std::to_string(unsigned(u));
    }
    return out;
}

Row flagFromUtf8(std::string text) {
    return {"flag from UTF-8 " + printable(text), [text] { FlagInputType{text}; }, badUtf8};
}
Row flagPrinted(std::u16string text) {
    return {"flag printed from UTF-16 " + printable(text),
            [text] { FlagInputType(text).toString(); }, badUtf16};
}
// A module that declares a flag from broken UTF-8 fails at its declaration.
Row declaredFlag(std::string text) {
    return {"declared flag " + printable(text),
            [text] {
                declare::Module module("broken");
                module.builtin("f").def(
                    +[](double x) { return x; }, declare::pure, declare::flag(1, text));
            },
            badUtf8};
}
// The string trait that reads an argument as UTF-8; the array stays with the holders.
Row readAsUtf8(std::string input, ka::ArrayPtr (*make)()) {
    return {"UTF-8 read of " + input,
            [make] {
                Holders holders;
                types::TypeTraitsImpl<std::string>()(make().release(), holders);
            },
            badUtf16};
}
Row madeFromUtf8(std::string text) {
    return {"string made from UTF-8 " + printable(text),
            [text] {
                kaArray_tag* made = types::TypeTraitsImpl<std::string>()(text);
                matrix::releaseReference(made);
            },
            badUtf8};
}
Row interpreted(std::string input, const char* name, Arrays (*make)(), Outcome expected = noVariant,
                std::function<void(const kaArray_tag*)> check = {}) {
    return {std::string(name) + "(" + input + ")", [=] { call(name, make(), 1, check); },
            std::move(expected)};
}

std::u16string textOf(const kaArray_tag* string) {
    return getHeldService<StringSupport>()->getString(string, 0);
}

TEST(BadInput, Text) {
    runTable(
        "text",
        {
            flagFromUtf8("\xff"),
            flagFromUtf8("even\xc3"),          // a sequence cut short
            flagFromUtf8("\xc0\xaf"),          // an overlong form of '/'
            flagFromUtf8("\xed\xa0\x80"),      // a surrogate encoded in UTF-8
            flagFromUtf8("\xf4\x90\x80\x80"),  // beyond U+10FFFF
            flagFromUtf8("\x80"
                         "descend"),  // a continuation byte with no lead
            flagPrinted(loneHigh),
            flagPrinted(u"even" + loneLow),
            flagPrinted(loneLow + loneHigh),  // a pair in the wrong order
            declaredFlag("desc\xe9nd"),       // Latin-1
            declaredFlag("\xed\xbf\xbf"),
            readAsUtf8("a char row with a lone surrogate",
                       [] { return ka::charArray(u"ab" + loneHigh); }),
            readAsUtf8("a string with a lone surrogate", [] { return string(loneLow + u"x"); }),
            madeFromUtf8("caf\xe9"),
            madeFromUtf8("\xf8\x88\x80\x80\x80"),
            {"char row made from UTF-8 ab\\xff", [] { ka::charArray(std::string_view("ab\xff")); },
             badUtf8},
            {"UTF-8 of a string with a lone surrogate",
             [] {
                 getHeldService<StringSupport>()->getStringUtf8(string(u"x" + loneHigh).get(), 0);
             },
             badUtf16},

            // Flags that are no text match no flag input.
            interpreted("2.5, 'even' with a lone surrogate", "round",
                        [] { return arrays(ka::scalar(2.5), string(u"even" + loneHigh)); }),
            interpreted("row, 'descend' with a lone surrogate", "sort",
                        [] {
                            return arrays(ka::row({2.0, 1.0}), string(u"desc" + loneLow + u"end"));
                        }),
            // UTF-16 in, UTF-16 out: nothing to convert, the surrogate stays.
            interpreted(
                "a string with a lone surrogate", "upper",
                [] { return arrays(string(u"ab" + loneHigh)); }, taken,
                [](const kaArray_tag* r) { EXPECT_EQ(textOf(r), u"AB" + loneHigh); }),
            interpreted(
                "two strings with lone surrogates", "plus",
                [] { return arrays(string(loneLow), string(loneHigh)); }, taken,
                [](const kaArray_tag* r) { EXPECT_EQ(textOf(r), loneLow + loneHigh); }),
            interpreted(
                "a char row with a lone surrogate", "upper",
                [] { return arrays(ka::charArray(u"x" + loneLow)); }, taken,
                [](const kaArray_tag* r) {
                    const auto* units = static_cast<const char16_t*>(matrix::data(r));
                    EXPECT_EQ(std::u16string(units, units + matrix::numberOfElements(r)),
                              u"X" + loneLow);
                }),
        });
}

}  // namespace
}  // namespace badinput
