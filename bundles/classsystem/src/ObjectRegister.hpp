// The reference object register: it records what it is told, by object type, and answers
// whether an object type was registered.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <builtin/services/IOrroObjectRegister.hpp>

namespace classbundle {

class ObjectRegister final : public Norvane::builtin::IOrroObjectRegister {
public:
    bool isOrroObjectRegistered(kaClassID classId, std::size_t variantId) const override;
    void registerOrroObject(kaClassID classId, std::size_t variantId, bool flag) override;
    void registerOrroObject(kaClassID classId, std::size_t variantId) override;
    void registerOrroObjectDefaultIndexingMethods(
        kaClassID classId, std::size_t variantId, bool flag,
        const Norvane::orro::OrroObjectDefaultIndexingMethods& methods) override;
    void registerParenReferenceVariant(kaClassID classId, std::size_t variantId,
                                       const OrroFunctionDescriptor& first,
                                       const OrroFunctionDescriptor& second, std::string name,
                                       NameRange names) override;
    void registerParenAssignVariant(kaClassID classId, std::size_t variantId,
                                    const OrroFunctionDescriptor& first,
                                    const OrroFunctionDescriptor& second, std::string name,
                                    NameRange names, bool flag) override;

private:
    void record(kaClassID classId, std::size_t variantId, std::string what);

    mutable std::mutex mutex_;
    // What each object type was told, in order: "object", "indexing methods",
    // "paren reference <name>", "paren assign <name>".
    std::map<std::pair<kaClassID, std::size_t>, std::vector<std::string>> told_;
};

}  // namespace classbundle
