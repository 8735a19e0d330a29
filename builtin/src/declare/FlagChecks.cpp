// The literal flags of a declaration, checked before they are put into the variants: a flag
// goes in at its position of the final input list, so a position past the end of that list, or
// two flags at one position, would make variants that no call can be meant for.
#include "FlagChecks.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Norvane::builtin::declare::detail {

void checkFlags(const std::string& name, std::size_t inputs,
                const builtinreg::detail::FlagList& sortedFlags) {
    for (std::size_t k = 0; k < sortedFlags.size(); ++k) {
        const auto& [position, text] = sortedFlags[k];
        const std::string flag = "builtin " + name + ": the flag \"" + text + "\" at position " +
                                 std::to_string(position);
        // Each flag before this one has lengthened the list by one.
        const std::size_t last = inputs + k;
        if (position > last) {
            throw std::invalid_argument(
                flag + " lies beyond the inputs: the function has " + std::to_string(inputs) +
                (inputs == 1 ? " input" : " inputs") + ", so a flag may stand at positions 0 to " +
                std::to_string(last));
        }
        if (k > 0 && sortedFlags[k - 1].first == position) {
            // Named in the order of their texts: the sort leaves two flags of one position in
            // no particular order.
            const auto [first, second] = std::minmax(text, sortedFlags[k - 1].second);
            throw std::invalid_argument("builtin " + name + ": the flags \"" + first + "\" and \"" +
                                        second + "\" stand at one position, " +
                                        std::to_string(position));
        }
    }
}

}  // namespace Norvane::builtin::declare::detail
