// The service of the test bundle: it greets with the text of its manifest's "greeting".
#pragma once

#include <string>

namespace testbundle {

struct IGreeter {
    virtual ~IGreeter() = default;
    virtual std::string greet() const = 0;
};

}  // namespace testbundle
