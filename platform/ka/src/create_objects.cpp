// Function handles and instances of class-system classes: arrays whose content is a name or
// a payload rather than elements.
#include <stdexcept>

#include "array_record.hpp"

namespace {

const ka::detail::ArrayRecord* objectRecord(const kaArray_tag* a) {
    if (a == nullptr) return nullptr;
    const auto& r = ka::detail::record(a);
    return r.kind == ka::detail::Kind::object ? &r : nullptr;
}

}  // namespace

ka::ArrayPtr ka::createFunctionHandle(std::string_view name) {
    if (name.empty()) throw std::invalid_argument("a function handle needs a name");
    ArrayPtr handle = detail::newRecord(kaFUNCTION_CLASS, detail::Kind::function);
    detail::ArrayRecord& r = detail::record(handle.get());
    detail::setDimensions(r, Dims{1, 1});
    r.ensureExtra().name = name;
    return handle;
}

const std::string& ka::functionName(const kaArray_tag* handle) {
    if (handle == nullptr || detail::record(handle).kind != detail::Kind::function)
        throw std::invalid_argument("not a function handle");
    return detail::record(handle).extra->name;
}

ka::ArrayPtr ka::createObject(ObjectDescription description) {
    if (description.classId <= kaOBJECT_CLASS)
        throw std::invalid_argument("class id " +
                                    std::to_string(static_cast<int>(description.classId)) +
                                    " is not a class of the class system");
    if (description.storedClass != kaSTRUCT_CLASS && description.storedClass != kaOPAQUE_CLASS &&
        description.storedClass != kaOBJECT_CLASS)
        matrix::detail::rejectInvalidClassId(description.storedClass);

    ArrayPtr object = detail::newRecord(description.storedClass, detail::Kind::object);
    detail::ArrayRecord& r = detail::record(object.get());
    detail::setDimensions(r, description.dims);
    detail::Extra& extra = r.ensureExtra();
    extra.objectClass = description.classId;
    extra.name = std::move(description.className);
    extra.payload = std::move(description.payload);
    extra.payloadType = extra.payload ? description.payloadType : nullptr;
    if (extra.payload) r.data = extra.payload.get();
    return object;
}

kaClassID ka::objectClassId(const kaArray_tag* array) {
    const detail::ArrayRecord* r = objectRecord(array);
    return r != nullptr ? r->extra->objectClass : matrix::classId(array);
}

const std::string& ka::objectClassName(const kaArray_tag* array) {
    static const std::string none;
    const detail::ArrayRecord* r = objectRecord(array);
    return r != nullptr ? r->extra->name : none;
}

const std::shared_ptr<void>& ka::objectPayload(const kaArray_tag* array) {
    static const std::shared_ptr<void> none;
    const detail::ArrayRecord* r = objectRecord(array);
    return r != nullptr ? r->extra->payload : none;
}

const std::type_info* ka::objectPayloadType(const kaArray_tag* array) {
    const detail::ArrayRecord* r = objectRecord(array);
    return r != nullptr ? r->extra->payloadType : nullptr;
}
