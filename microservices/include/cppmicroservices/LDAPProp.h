// Builds filter text in code: (LDAPProp("name") == "greeter" && LDAPProp("rank") >= 2).
#pragma once

#include "cppmicroservices/Any.h"

#include <string>
#include <string_view>

namespace cppmicroservices {

// A filter expression in text form; empty (null) expressions vanish when combined.
class LDAPPropExpr {
public:
    LDAPPropExpr() = default;
    explicit LDAPPropExpr(const std::string& expression);

    LDAPPropExpr operator!() const;
    // this = this && / || other.
    LDAPPropExpr& operator&=(const LDAPPropExpr& other);
    LDAPPropExpr& operator|=(const LDAPPropExpr& other);
    operator std::string() const;
    bool IsNull() const;

private:
    std::string expression_;
};

LDAPPropExpr operator&&(const LDAPPropExpr& left, const LDAPPropExpr& right);
LDAPPropExpr operator||(const LDAPPropExpr& left, const LDAPPropExpr& right);

// One attribute; comparing it with a value gives an LDAPPropExpr. Values are written with
// their filter special characters escaped, so they compare literally; a comparison with an
// empty value gives a null expression.
class LDAPProp {
public:
    explicit LDAPProp(const std::string& property);

    template <typename T>
    LDAPPropExpr operator==(const T& value) const
    {
        return compare("=", detail::textOf(value));
    }
    template <typename T>
    LDAPPropExpr operator!=(const T& value) const
    {
        return !(*this == value);
    }
    template <typename T>
    LDAPPropExpr operator<=(const T& value) const
    {
        return compare("<=", detail::textOf(value));
    }
    template <typename T>
    LDAPPropExpr operator>=(const T& value) const
    {
        return compare(">=", detail::textOf(value));
    }
    template <typename T>
    LDAPPropExpr Approx(const T& value) const
    {
        return compare("~=", detail::textOf(value));
    }

    // "(property=*)".
    LDAPPropExpr IsPresent() const;
    operator LDAPPropExpr() const;
    // "(!(property=*))".
    LDAPPropExpr operator!() const;

private:
    LDAPPropExpr compare(std::string_view op, std::string_view value) const;

    std::string property_;
};

} // namespace cppmicroservices
