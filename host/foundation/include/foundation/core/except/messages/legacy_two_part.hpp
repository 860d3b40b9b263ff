// Message ids of the host's "ORVEX:legacy_two_part" component.
#pragma once

#include <string_view>

namespace ORVEX::legacy_two_part {

// Argument 0: the name of the function that left an output unassigned.
struct unassignedOutputs {
    static constexpr std::string_view component = "ORVEX:legacy_two_part";
    static constexpr std::string_view key = "unassignedOutputs";
    static constexpr std::string_view text =
        "One or more output arguments not assigned during call to \"{0}\".";
};

} // namespace ORVEX::legacy_two_part
