// LDAP filters: the first line of the input is the filter text, the rest describes the
// properties it is matched against. A filter either parses or raises std::invalid_argument;
// a parsed filter's normalised text parses again to an equal filter that matches the same
// properties, with and without regard to the case of attribute names.
#include "Check.hpp"

#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;

using fuzz::check;

Any scalarValue(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0: return input.ConsumeRandomLengthString(16);
    case 1: return input.ConsumeIntegral<int>();
    case 2: return input.ConsumeIntegral<long long>();
    case 3: return input.ConsumeIntegral<unsigned long long>();
    case 4: return input.ConsumeFloatingPoint<double>();
    default: return input.ConsumeBool();
    }
}

// Up to eight properties, some holding sequences, in a map of the kind the input picks.
AnyMap propertiesFrom(FuzzedDataProvider& input) {
    constexpr AnyMap::map_type kinds[] = {AnyMap::ORDERED_MAP, AnyMap::UNORDERED_MAP,
                                          AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS};
    AnyMap properties(input.PickValueInArray(kinds));
    const int count = input.ConsumeIntegralInRange(0, 8);
    for (int i = 0; i < count && input.remaining_bytes() > 0; ++i) {
        std::string key = input.ConsumeRandomLengthString(12);
        if (input.ConsumeIntegralInRange(0, 3) == 0) {
            std::vector<Any> sequence(input.ConsumeIntegralInRange(0, 3));
            for (Any& element : sequence) element = scalarValue(input);
            properties[std::move(key)] = std::move(sequence);
        } else {
            properties[std::move(key)] = scalarValue(input);
        }
    }
    return properties;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = text.find('\n');
    const std::string filterText = text.substr(0, newline);
    FuzzedDataProvider input(data + filterText.size(), size - filterText.size());
    const AnyMap properties = propertiesFrom(input);

    LDAPFilter filter;
    try {
        filter = LDAPFilter(filterText);
    } catch (const std::invalid_argument&) {
        return 0;
    }
    check(static_cast<bool>(filter));
    const bool matches = filter.Match(properties);
    const bool matchesCase = filter.MatchCase(properties);

    const LDAPFilter normalised(filter.ToString());
    check(normalised == filter);
    check(normalised.ToString() == filter.ToString());
    check(normalised.Match(properties) == matches);
    check(normalised.MatchCase(properties) == matchesCase);
    return 0;
}
