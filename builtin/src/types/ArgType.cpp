#include <builtin/types/ArgType.hpp>

#include <ostream>
#include <type_traits>

namespace Norvane::builtin::types {

namespace {

// std::visit reports a valueless variant with a text of its own; every operation here reports
// it as a plain std::bad_variant_access instead.
void requireValue(const ArgType& type) {
    if (type.valueless_by_exception()) {
        throw std::bad_variant_access();
    }
}

template <class Visitor>
decltype(auto) visitOne(Visitor&& visitor, const ArgType& type) {
    requireValue(type);
    return std::visit(std::forward<Visitor>(visitor), type);
}

template <class Visitor>
decltype(auto) visitTwo(Visitor&& visitor, const ArgType& a, const ArgType& b) {
    requireValue(a);
    requireValue(b);
    return std::visit(std::forward<Visitor>(visitor), a, b);
}

// Neither is less than the other.
template <class T>
bool equivalent(const T& a, const T& b) {
    return !(a < b) && !(b < a);
}

// isAcceptable, one overload per cell of the table that can be true; every other pair of
// alternatives is false.
struct Acceptance {
    bool operator()(const UnsupportedArgType&, const UnsupportedArgType&) const { return true; }
    bool operator()(const FlagInputType& d, const FlagInputType& c) const {
        return equivalent(d, c);
    }
    bool operator()(const NumericScalarTypes& d, const NumericScalarTypes& c) const {
        return equivalent(d, c);
    }
    // A flag is a scalar string.
    bool operator()(const KeldorStringType& d, const FlagInputType& c) const {
        return d.isAcceptable(KeldorStringType(c));
    }
    bool operator()(const KeldorStringType& d, const KeldorStringType& c) const {
        return d.isAcceptable(c);
    }
    bool operator()(const OrroObjectPlaceTypes& d, const OrroObjectPlaceTypes& c) const {
        return d == c;
    }
    bool operator()(const OrroObjectTypes& d, const FlagInputType& c) const {
        return d == OrroObjectTypes(c);
    }
    bool operator()(const OrroObjectTypes& d, const KeldorStringType& c) const {
        return d == OrroObjectTypes(c);
    }
    bool operator()(const OrroObjectTypes& d, const OrroObjectTypes& c) const { return d == c; }
    bool operator()(const KaArrayTypes& d, const KaArrayTypes& c) const {
        return d.isAcceptable(c);
    }
    // A RELAXED array takes the other alternatives through their array form; a STRICT one
    // takes only arrays.
    template <class Candidate>
    bool operator()(const KaArrayTypes& d, const Candidate& c) const {
        if (d.getSignatureTolerance() == SignatureTolerance::STRICT) {
            return false;
        }
        return d.isAcceptable(KaArrayTypes(c));
    }
    template <class Declared, class Candidate>
    bool operator()(const Declared&, const Candidate&) const {
        return false;
    }
};

// isCompatible, in the same manner.
struct Compatibility {
    bool operator()(const UnsupportedArgType&, const UnsupportedArgType&) const { return true; }
    bool operator()(const FlagInputType& a, const FlagInputType& b) const {
        return equivalent(a, b);
    }
    bool operator()(const NumericScalarTypes& a, const NumericScalarTypes& b) const {
        return equivalent(a, b);
    }
    bool operator()(const KeldorStringType& a, const FlagInputType& b) const {
        return KeldorStringType(b) == a;
    }
    bool operator()(const KeldorStringType& a, const KeldorStringType& b) const { return b == a; }
    bool operator()(const OrroObjectPlaceTypes& a, const OrroObjectPlaceTypes& b) const {
        return b == a;
    }
    bool operator()(const OrroObjectTypes& a, const FlagInputType& b) const {
        return OrroObjectTypes(b) == a;
    }
    bool operator()(const OrroObjectTypes& a, const KeldorStringType& b) const {
        return OrroObjectTypes(b) == a;
    }
    bool operator()(const OrroObjectTypes& a, const OrroObjectTypes& b) const { return b == a; }
    bool operator()(const KaArrayTypes& a, const KaArrayTypes& b) const {
        return a.isCompatible(b);
    }
    // A flag and an array are never compatible, in either order.
    bool operator()(const FlagInputType&, const KaArrayTypes&) const { return false; }
    bool operator()(const KaArrayTypes&, const FlagInputType&) const { return false; }
    template <class A>
    bool operator()(const A& a, const KaArrayTypes& b) const {
        return b.isCompatible(KaArrayTypes(a));
    }
    template <class B>
    bool operator()(const KaArrayTypes& a, const B& b) const {
        return a.isCompatible(KaArrayTypes(b));
    }
    template <class A, class B>
    bool operator()(const A&, const B&) const {
        return false;
    }
};

}  // namespace

std::string toString(const ArgType& type, ArgTypeDirection direction, std::size_t index) {
    return visitOne(
        [&](const auto& alternative) -> std::string {
            using T = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<T, UnsupportedArgType>) {
                return {};
            } else if constexpr (std::is_same_v<T, FlagInputType> ||
                                 std::is_same_v<T, NumericScalarTypes>) {
                return alternative.toString();
            } else {
                return alternative.toString(direction, index);
            }
        },
        type);
}

bool isAcceptable(const ArgType& declared, const ArgType& candidate) {
    // A declared scalar against a live scalar is the question of most calls; it needs no visit.
    const auto* declaredScalar = std::get_if<NumericScalarTypes>(&declared);
    const auto* candidateScalar = std::get_if<NumericScalarTypes>(&candidate);
    if (declaredScalar != nullptr && candidateScalar != nullptr) {
        return equivalent(*declaredScalar, *candidateScalar);
    }
    return visitTwo(Acceptance{}, declared, candidate);
}

bool isAcceptableToOrro(const ArgType& declared, const ArgType& candidate) {
    requireValue(declared);
    requireValue(candidate);
    return declared.index() == candidate.index() && isAcceptable(declared, candidate);
}

bool isCompatible(const ArgType& a, const ArgType& b) {
    return visitTwo(Compatibility{}, a, b);
}

OrroSupportLevel getOrroSupportLevel(const ArgType& type, ArgTypeDirection direction) {
    return visitOne(
        [direction](const auto& alternative) { return alternative.getOrroSupportLevel(direction); },
        type);
}

std::vector<ArgType> getGreaterPrecedenceTypes(const ArgType& type) {
    return visitOne(
        [](const auto& alternative) {
            std::vector<ArgType> result;
            for (const auto& entry : alternative.getGreaterPrecedenceTypes()) {
                using Entry = std::decay_t<decltype(entry)>;
                if constexpr (std::is_same_v<Entry, KaArrayTypes::PrecedenceType>) {
                    std::visit([&result](const auto& element) { result.emplace_back(element); },
                               entry);
                } else {
                    result.emplace_back(entry);
                }
            }
            return result;
        },
        type);
}

bool skipDuringInvoke(const ArgType& type) {
    return std::holds_alternative<FlagInputType>(type);
}

ArgType asElementWiseArrayType(const ArgType& type) {
    KaArrayTypes array = visitOne(
        [](const auto& alternative) {
            using T = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<T, KaArrayTypes>) {
                return alternative;
            } else {
                return KaArrayTypes(alternative);
            }
        },
        type);
    if (!array.asScalar() || array.getDensity() != KaArrayTypes::Density::FULL) {
        return type;
    }
    array.setShape(KaArrayTypes::Shape::UNKNOWN, SIZE_MAX);
    array.setSignatureTolerance(SignatureTolerance::RELAXED);
    return ArgType(array);
}

ArgType setSignatureTolerance(ArgType type, SignatureTolerance tolerance) {
    if (auto* array = std::get_if<KaArrayTypes>(&type)) {
        array->setSignatureTolerance(tolerance);
    }
    return type;
}

std::ostream& operator<<(std::ostream& os, const ArgType& type) {
    if (type.valueless_by_exception()) {
        throw std::bad_variant_access();
    }
    std::visit(
        [&os](const auto& alternative) {
            using T = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<T, UnsupportedArgType>) {
                // writes nothing
            } else if constexpr (std::is_same_v<T, KeldorStringType> ||
                                 std::is_same_v<T, KaArrayTypes>) {
                alternative.operator<<(os);
            } else {
                os << alternative.toString();
            }
        },
        type);
    return os;
}

}  // namespace Norvane::builtin::types
