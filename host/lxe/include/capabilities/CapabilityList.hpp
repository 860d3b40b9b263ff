// What a builtin declares it can do, for the host to consult; the framework stores it
// and never interprets it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace capabilities {

class CapabilityList {
public:
    CapabilityList() = default;
    explicit CapabilityList(std::vector<std::string> capabilities) : capabilities_(std::move(capabilities)) {}

    const std::vector<std::string>& get() const noexcept { return capabilities_; }

private:
    std::vector<std::string> capabilities_;
};

} // namespace capabilities
