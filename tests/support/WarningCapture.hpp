// Collects the warnings that matrix::handleWarning issues while it lives, instead of letting
// them reach stderr, and puts the previous handler back at the end.
#pragma once

#include <string>
#include <vector>

#include <ka/runtime.hpp>

namespace testsupport {

class WarningCapture {
public:
    WarningCapture()
        : previous_(ka::setWarningHandler(
              [this](const std::u16string& text) { warnings_.push_back(text); })) {}
    WarningCapture(const WarningCapture&) = delete;
    WarningCapture& operator=(const WarningCapture&) = delete;
    ~WarningCapture() { ka::setWarningHandler(std::move(previous_)); }
    const std::vector<std::u16string>& warnings() const { return warnings_; }

private:
    std::vector<std::u16string> warnings_;
    ka::WarningHandler previous_;
};

}  // namespace testsupport
