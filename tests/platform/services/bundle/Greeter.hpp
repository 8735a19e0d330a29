// The service of the test bundle: it greets with the text of its manifest's "greeting".
#pragma once

#include <string>

namespace testbundle {

class IGreeter {
public:
    virtual ~IGreeter() = default;
    virtual std::string greet() const = 0;
};

}  // namespace testbundle
