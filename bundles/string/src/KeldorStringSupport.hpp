// The reference implementation of StringSupport: the language's string class (class id 19,
// "string"), whose arrays of any size are opaque arrays of that class holding one UTF-16 text
// per element, in column-major order.
#pragma once

#include <builtin/services/StringSupport.hpp>

namespace stringbundle {

inline constexpr kaClassID kStringClassId = static_cast<kaClassID>(19);
inline constexpr const char* kStringClassName = "string";

class KeldorStringSupport final : public Norvane::builtin::StringSupport {
public:
    bool isString(const kaArray_tag* array) const override;
    kaClassID getStringClassId() const override;
    std::size_t getNumberOfStrings(const kaArray_tag* array) const override;
    std::string getStringUtf8(const kaArray_tag* array, std::size_t index) const override;
    const std::u16string& getString(const kaArray_tag* array, std::size_t index) const override;
    OwnedArray createEmptyStrings(std::span<const std::size_t> dims) const override;
    OwnedArray createString(std::span<const std::size_t> dims,
                            std::vector<std::u16string> strings) const override;
    std::optional<std::u16string_view> getStringFlag(const kaArray_tag* array) const override;
    std::vector<std::u16string> getStrings(const kaArray_tag* array) const override;
    OwnedArray stringToKaArray(Norvane::String::String* value, unsigned options) const override;
};

}  // namespace stringbundle
