// A filter over properties in the text form of RFC 1960, e.g. "(&(name=greeter)(rank>=2))".
#pragma once

#include "cppmicroservices/AnyMap.h"

#include <iosfwd>
#include <memory>
#include <string>

namespace cppmicroservices {

class Bundle;
class LDAPPropExpr;
class ServiceReferenceBase;

namespace detail {
struct FilterNode;
}

// Attribute names compare without regard to case (except in MatchCase); '=' compares text
// exactly, '~=' ignoring case and white space, '<=' and '>=' numerically when both sides
// are numbers and as text otherwise; "attr=*" tests presence, other '*' are wildcards.
// A property holding a sequence matches when one of its elements does. Copies share the
// parsed form; a filter is safe to use from several threads.
class LDAPFilter {
public:
    // An invalid filter that matches nothing.
    LDAPFilter();
    // Throws std::invalid_argument naming the problem and its position in the text.
    LDAPFilter(const std::string& filter);
    explicit LDAPFilter(const LDAPPropExpr& expression);

    explicit operator bool() const;

    bool Match(const ServiceReferenceBase& reference) const;
    // Matches the bundle's manifest headers; false for an invalid bundle.
    bool Match(const Bundle& bundle) const;
    // In a map with case-sensitive keys, a key of the attribute's exact case is used; else
    // the one key that differs only in case. Several such keys (and no exact one) throw
    // std::invalid_argument.
    bool Match(const AnyMap& dictionary) const;
    // As Match, but attribute names must match the keys' case too.
    bool MatchCase(const AnyMap& dictionary) const;

    // The normalised text: no white space between parts, special characters escaped.
    std::string ToString() const;

    bool operator==(const LDAPFilter& other) const;

private:
    std::shared_ptr<const detail::FilterNode> root_;
};

std::ostream& operator<<(std::ostream& out, const LDAPFilter& filter);

} // namespace cppmicroservices
