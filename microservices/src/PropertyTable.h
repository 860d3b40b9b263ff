// The properties of one registered service, laid out for filter evaluation: key numbers in
// one contiguous array, and for text values a hash of the text, so that an equality test
// against a service that does not match costs a few integer comparisons.
#pragma once

#include "FilterExpression.h"

#include "cppmicroservices/Any.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cppmicroservices::detail {

class PropertyTable {
public:
    // Sets the value of key, replacing the value of a key that differs only in case.
    void set(const std::string& key, Any value);

    // Case-insensitive lookup; null when absent.
    const Any* find(std::string_view key) const;
    std::vector<std::string> keys() const;

    // The filter evaluation source (see evaluateFilter).
    bool contains(const FilterAttribute& attribute) const;
    bool satisfies(const FilterNode& leaf) const;

private:
    static constexpr std::size_t ABSENT = static_cast<std::size_t>(-1);

    std::size_t indexOf(std::uint32_t keyId) const;

    std::vector<std::uint32_t> keyIds_;
    std::vector<std::size_t> textHashes_; // meaningful where holdsText_ is set
    std::vector<bool> holdsText_;
    std::vector<std::string> keys_;
    std::vector<Any> values_;
};

} // namespace cppmicroservices::detail
