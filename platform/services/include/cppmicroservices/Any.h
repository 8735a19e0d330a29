// Any: a copyable, type-erased value of any copyable type, as service properties and bundle
// manifests hold them. A failed typed read throws BadAnyCastException with a message that
// names both the held and the requested type.
#pragma once

#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <cppmicroservices/detail/TypeName.h>

namespace cppmicroservices {

class BadAnyCastException : public std::bad_cast {
public:
    explicit BadAnyCastException(std::string message) : message_(std::move(message)) {}
    const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
};

class Any;

namespace detail {

template <class T>
struct IsVector : std::false_type {};
template <class T, class A>
struct IsVector<std::vector<T, A>> : std::true_type {};

template <class T>
concept Streamable = requires(std::ostream& os, const T& value) {
    os << value;
};

// The text of a value for messages and filters: strings as they are, bools as true/false,
// vectors as [a, b], anything streamable as streamed, anything else as its type in <>.
template <class T>
std::string ValueText(const T& value) {
    if constexpr (std::is_same_v<T, std::string>) {
        return value;
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (IsVector<T>::value) {
        std::string text = "[";
        for (const auto& element : value) {
            text += (text.size() > 1 ? ", " : "") + ValueText(element);
        }
        return text + "]";
    } else if constexpr (Streamable<T>) {
        std::ostringstream out;
        out << value;
        return out.str();
    } else {
        return "<" + GetDemangledName(typeid(T)) + ">";
    }
}

[[noreturn]] void ThrowBadAnyCast(const Any& held, const std::type_info& requested);

}  // namespace detail

class Any {
public:
    Any() noexcept = default;

    // C strings are held as std::string, so that a literal makes a usable property value.
    template <class T, class V = std::decay_t<T>, class = std::enable_if_t<!std::is_same_v<V, Any>>>
    Any(T&& value) : content_(MakeHolder(std::forward<T>(value))) {}  // NOLINT: implicit by design

    Any(const Any& other) : content_(other.content_ ? other.content_->Clone() : nullptr) {}
    Any(Any&&) noexcept = default;
    Any& operator=(const Any& other) {
        Any(other).Swap(*this);
        return *this;
    }
    Any& operator=(Any&&) noexcept = default;
    ~Any() = default;

    void Swap(Any& other) noexcept { content_.swap(other.content_); }
    bool Empty() const noexcept { return !content_; }
    // typeid(void) when empty.
    const std::type_info& Type() const noexcept {
        return content_ ? content_->Type() : typeid(void);
    }
    // The demangled name of the held type; "void" when empty.
    std::string TypeName() const { return detail::GetDemangledName(Type()); }
    // The held value as text (see detail::ValueText); empty when empty.
    std::string ToString() const { return content_ ? content_->ToString() : std::string(); }

private:
    struct Placeholder {
        virtual ~Placeholder() = default;
        virtual std::unique_ptr<Placeholder> Clone() const = 0;
        virtual const std::type_info& Type() const noexcept = 0;
        virtual std::string ToString() const = 0;
    };

    template <class T>
    struct Holder final : Placeholder {
        template <class U>
        explicit Holder(U&& v) : value(std::forward<U>(v)) {}
        std::unique_ptr<Placeholder> Clone() const override {
            return std::make_unique<Holder>(value);
        }
        const std::type_info& Type() const noexcept override { return typeid(T); }
        std::string ToString() const override { return detail::ValueText(value); }
        T value;
    };

    template <class T>
    static std::unique_ptr<Placeholder> MakeHolder(T&& value) {
        using V = std::decay_t<T>;
        if constexpr (std::is_same_v<V, const char*> || std::is_same_v<V, char*>) {
            return std::make_unique<Holder<std::string>>(std::string(value));
        } else {
            return std::make_unique<Holder<V>>(std::forward<T>(value));
        }
    }

    template <class T>
    friend T* any_cast(Any* operand) noexcept;
    template <class T>
    friend const T* any_cast(const Any* operand) noexcept;

    std::unique_ptr<Placeholder> content_;
};

inline std::ostream& operator<<(std::ostream& os, const Any& any) {
    return os << any.ToString();
}

// Pointer forms: null if the Any holds no T (or is null); never throw.
template <class T>
T* any_cast(Any* operand) noexcept {
    if (operand == nullptr || operand->Type() != typeid(T)) {
        return nullptr;
    }
    return &static_cast<Any::Holder<T>*>(operand->content_.get())->value;
}

template <class T>
const T* any_cast(const Any* operand) noexcept {
    return any_cast<T>(const_cast<Any*>(operand));
}

// Value forms: a copy of the held T; BadAnyCastException if the Any holds something else.
template <class T>
T any_cast(const Any& operand) {
    using V = std::remove_cvref_t<T>;
    const V* value = any_cast<V>(&operand);
    if (value == nullptr) {
        detail::ThrowBadAnyCast(operand, typeid(V));
    }
    return *value;
}

template <class T>
T any_cast(Any& operand) {
    using V = std::remove_cvref_t<T>;
    V* value = any_cast<V>(&operand);
    if (value == nullptr) {
        detail::ThrowBadAnyCast(operand, typeid(V));
    }
    return *value;
}

// Reference forms: the held T itself; BadAnyCastException if the Any holds something else.
template <class T>
const T& ref_any_cast(const Any& operand) {
    const T* value = any_cast<T>(&operand);
    if (value == nullptr) {
        detail::ThrowBadAnyCast(operand, typeid(T));
    }
    return *value;
}

template <class T>
T& ref_any_cast(Any& operand) {
    T* value = any_cast<T>(&operand);
    if (value == nullptr) {
        detail::ThrowBadAnyCast(operand, typeid(T));
    }
    return *value;
}

}  // namespace cppmicroservices
