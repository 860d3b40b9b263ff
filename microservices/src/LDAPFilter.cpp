#include "cppmicroservices/LDAPFilter.h"

#include "FilterExpression.h"
#include "ServiceRecord.h"

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/LDAPProp.h"
#include "cppmicroservices/ServiceReferenceBase.h"

#include <ostream>
#include <stdexcept>

namespace cppmicroservices {

namespace {

// A map of any kind as a filter evaluation source; keys ignore case unless exactCase.
class MapSource {
public:
    MapSource(const AnyMap& map, bool exactCase) : map_(map), exactCase_(exactCase) {}

    bool contains(const detail::FilterAttribute& attribute) const { return find(attribute.name) != nullptr; }

    bool satisfies(const detail::FilterNode& leaf) const
    {
        const Any* value = find(leaf.attribute.name);
        return value != nullptr && detail::leafMatches(leaf, *value);
    }

private:
    // In a map with case-sensitive keys the key of exactly that case wins; without one, a
    // single key differing only in case matches, and several are ambiguous.
    const Any* find(const std::string& name) const
    {
        if (exactCase_ || map_.GetType() == AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS) {
            const auto position = map_.find(name);
            if (position == map_.end() || (exactCase_ && position->first != name)) {
                return nullptr;
            }
            return &position->second;
        }
        const auto exact = map_.find(name);
        if (exact != map_.end()) {
            return &exact->second;
        }
        const std::string* foundKey = nullptr;
        const Any* found = nullptr;
        for (const auto& [key, value] : map_) {
            if (detail::any_map_ciequal()(key, name)) {
                if (found != nullptr) {
                    throw std::invalid_argument("the properties hold keys '" + *foundKey + "' and '" + key +
                                                "' that differ only in case; filter attribute '" + name +
                                                "' cannot choose between them");
                }
                foundKey = &key;
                found = &value;
            }
        }
        return found;
    }

    const AnyMap& map_;
    bool exactCase_;
};

bool matchMap(const detail::FilterNode* root, const AnyMap& map, bool exactCase)
{
    return root != nullptr && detail::evaluateFilter(*root, MapSource(map, exactCase));
}

} // namespace

LDAPFilter::LDAPFilter() = default;

LDAPFilter::LDAPFilter(const std::string& filter)
    : root_(std::make_shared<const detail::FilterNode>(detail::parseFilter(filter)))
{
}

LDAPFilter::LDAPFilter(const LDAPPropExpr& expression) : LDAPFilter(static_cast<std::string>(expression)) {}

LDAPFilter::operator bool() const
{
    return root_ != nullptr;
}

bool LDAPFilter::Match(const ServiceReferenceBase& reference) const
{
    const auto record = detail::ReferenceAccess::record(reference);
    return root_ != nullptr && record != nullptr && record->matches(*root_);
}

bool LDAPFilter::Match(const Bundle& bundle) const
{
    return bundle && Match(bundle.GetHeaders());
}

bool LDAPFilter::Match(const AnyMap& dictionary) const
{
    return matchMap(root_.get(), dictionary, false);
}

bool LDAPFilter::MatchCase(const AnyMap& dictionary) const
{
    return matchMap(root_.get(), dictionary, true);
}

std::string LDAPFilter::ToString() const
{
    return root_ ? detail::filterText(*root_) : std::string();
}

bool LDAPFilter::operator==(const LDAPFilter& other) const
{
    return ToString() == other.ToString();
}

std::ostream& operator<<(std::ostream& out, const LDAPFilter& filter)
{
    return out << filter.ToString();
}

} // namespace cppmicroservices
