// The engine's object register (orroRegService in log texts): it learns which object types
// exist and how they are indexed. Every operation takes the class id and the variant id of the
// object type first. Reach it through getHeldService<IOrroObjectRegister>().
#pragma once

#include <cstddef>
#include <string>

#include <boost/range/iterator_range.hpp>

#include <engine/opaque.hpp>
#include <ka/ka.hpp>

namespace Norvane::orro {
struct OrroFunctionDescriptor;
}  // namespace Norvane::orro

namespace Norvane::builtin {

class IOrroObjectRegister {
public:
    using OrroFunctionDescriptor = Norvane::orro::OrroFunctionDescriptor;
    using NameRange = boost::iterator_range<std::string*>;

    virtual ~IOrroObjectRegister() = default;

    // Whether the object type is registered. Not called by this library.
    virtual bool isOrroObjectRegistered(kaClassID classId, std::size_t variantId) const = 0;

    virtual void registerOrroObject(kaClassID classId, std::size_t variantId, bool flag) = 0;

    virtual void registerOrroObject(kaClassID classId, std::size_t variantId) = 0;

    virtual void registerOrroObjectDefaultIndexingMethods(
        kaClassID classId, std::size_t variantId, bool flag,
        const Norvane::orro::OrroObjectDefaultIndexingMethods& methods) = 0;

    virtual void registerParenReferenceVariant(kaClassID classId, std::size_t variantId,
                                               const OrroFunctionDescriptor& first,
                                               const OrroFunctionDescriptor& second,
                                               std::string name, NameRange names) = 0;

    virtual void registerParenAssignVariant(kaClassID classId, std::size_t variantId,
                                            const OrroFunctionDescriptor& first,
                                            const OrroFunctionDescriptor& second, std::string name,
                                            NameRange names, bool flag) = 0;
};

}  // namespace Norvane::builtin
