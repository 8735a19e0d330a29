// VariantSignature: a live call as the variants see it while one of them is being chosen. It
// lives on the stack of the call, views the caller's arguments, and classifies each argument
// the first time a variant asks about it. The classifications are kept in a cache that the
// caller owns (15 arguments inline), so that trying many variants classifies each argument at
// most once, and an argument that no variant reaches is never classified.
//
// Not for use across threads: the cache belongs to one call.
#pragma once

#include <cstddef>

#include <boost/container/small_vector.hpp>

#include <builtin/calling/Parameter.hpp>
#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/types/ClassifyKaArray.hpp>

struct kaArray_tag;

namespace Norvane::builtin {

struct BuiltinVariant;
using types::ArgType;

// What one argument is, and how to hand it to a variant. A null converter marks an element that
// has not been classified yet, so a classification without a converter is never remembered.
struct ArgumentClassification {
    ArgType type;
    types::Converter converter = nullptr;
};

// Indexed by argument position; grows on demand up to the position asked for.
using ClassificationCache = boost::container::small_vector<ArgumentClassification, 15>;

struct BUILTIN_API VariantSignature {
    std::size_t nlhs;
    std::size_t nrhs;
    kaArray_tag* const* prhs;
    ClassificationCache* cache;

    VariantSignature(std::size_t outputs, std::size_t inputs, kaArray_tag* const* arguments,
                     ClassificationCache* classifications)
        : nlhs(outputs), nrhs(inputs), prhs(arguments), cache(classifications) {}

    // The type of argument i. Null arguments, instances of classes that are neither the string
    // class nor known engine objects, and arrays that classification refuses are
    // UnsupportedArgType; the last two are asked about afresh each time.
    ArgType getArgType(std::size_t i) const;

    // The same without a copy. The reference is valid until the next classification through
    // this signature. An argument classified before is answered from the cache, inline.
    const ArgType& argType(std::size_t i) const {
        if (i < cache->size()) {
            const ArgumentClassification& known = (*cache)[i];
            if (known.converter != nullptr) {
                return known.type;
            }
        }
        return classify(i).type;
    }

    // Argument i converted for a variant that declares `declared` at that position. An
    // unsupported argument passes through as an array with a new reference (null stays null).
    Parameter toParameter(std::size_t i, const ArgType* declared) const {
        (void)argType(i);  // after this the cache reaches i, with a converter unless refused
        const types::Converter converter = (*cache)[i].converter;
        return converter != nullptr ? converter(prhs[i], declared)
                                    : types::passThroughConverter(prhs[i], declared);
    }

    // The Parameters for `variant`, which takes the call, appended to `arguments`: each argument
    // through its converter, flag inputs left out (they have done their work in matching). If a
    // conversion throws, the references taken so far are given back.
    void collectParameters(const BuiltinVariant& variant, ParameterList& arguments) const;

private:
    // Classifies argument i and keeps the result if it has a converter.
    const ArgumentClassification& classify(std::size_t i) const;
};

}  // namespace Norvane::builtin
