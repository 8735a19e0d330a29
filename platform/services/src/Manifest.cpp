// Bundle manifests: JSON to AnyMap with Boost.JSON.
#include <foundation/cppmicroservices/manifest.hpp>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace foundation::cppmicroservices {

namespace {

using ::cppmicroservices::Any;
using ::cppmicroservices::AnyMap;

template <class Integer>
Any FromInteger(Integer value) {
    if (std::in_range<int>(value)) {
        return static_cast<int>(value);
    }
    if (std::in_range<long long>(value)) {
        return static_cast<long long>(value);
    }
    return static_cast<double>(value);
}

AnyMap FromObject(const boost::json::object& object);

Any FromValue(const boost::json::value& value) {
    switch (value.kind()) {
        case boost::json::kind::object: return FromObject(value.get_object());
        case boost::json::kind::array: {
            std::vector<Any> elements;
            elements.reserve(value.get_array().size());
            for (const auto& element : value.get_array()) {
                elements.push_back(FromValue(element));
            }
            return elements;
        }
        case boost::json::kind::string: return std::string(value.get_string());
        case boost::json::kind::int64: return FromInteger(value.get_int64());
        case boost::json::kind::uint64: return FromInteger(value.get_uint64());
        case boost::json::kind::double_: return value.get_double();
        case boost::json::kind::bool_: return value.get_bool();
        case boost::json::kind::null: return Any();
    }
    return Any();
}

AnyMap FromObject(const boost::json::object& object) {
    AnyMap map;
    for (const auto& member : object) {
        map[std::string(member.key())] = FromValue(member.value());
    }
    return map;
}

}  // namespace

AnyMap parseManifest(std::string_view json) {
    boost::system::error_code error;
    const boost::json::value value =
        boost::json::parse(boost::json::string_view(json.data(), json.size()), error);
    if (error) {
        throw std::invalid_argument("the manifest is not valid JSON: " + error.message());
    }
    if (!value.is_object()) {
        throw std::invalid_argument("the manifest is not a JSON object");
    }
    return FromObject(value.get_object());
}

AnyMap readManifest(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    // Copying nothing fails the copy, so an empty file is read only as far as its end: its empty
    // text is then refused as JSON, not as a file that cannot be read. A read error (a folder
    // in the manifest's place) leaves the file bad.
    const bool empty = file && file.peek() == std::ifstream::traits_type::eof() && !file.bad();
    if (!file || (!empty && !(text << file.rdbuf())) || file.bad()) {
        throw std::runtime_error("cannot read " + path);
    }
    return parseManifest(text.str());
}

}  // namespace foundation::cppmicroservices
