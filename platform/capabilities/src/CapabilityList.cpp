#include <capabilities/CapabilityList.hpp>

#include <cstdio>
#include <ostream>

namespace capabilities {

std::string toString(CapabilityList list) {
    char text[32];
    std::snprintf(text, sizeof text, "CapabilityList(0x%08x)", static_cast<unsigned>(list.bits()));
    return text;
}

std::ostream& operator<<(std::ostream& out, CapabilityList list) {
    return out << toString(list);
}

}  // namespace capabilities
