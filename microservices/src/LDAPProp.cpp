#include "cppmicroservices/LDAPProp.h"

#include "FilterExpression.h"

namespace cppmicroservices {

LDAPPropExpr::LDAPPropExpr(const std::string& expression) : expression_(expression) {}

LDAPPropExpr LDAPPropExpr::operator!() const
{
    return IsNull() ? *this : LDAPPropExpr("(!" + expression_ + ")");
}

LDAPPropExpr::operator std::string() const
{
    return expression_;
}

bool LDAPPropExpr::IsNull() const
{
    return expression_.empty();
}

namespace {

LDAPPropExpr combine(char op, const LDAPPropExpr& left, const LDAPPropExpr& right)
{
    if (left.IsNull() || right.IsNull()) {
        return left.IsNull() ? right : left;
    }
    return LDAPPropExpr(std::string("(") + op + std::string(left) + std::string(right) + ")");
}

} // namespace

LDAPPropExpr operator&&(const LDAPPropExpr& left, const LDAPPropExpr& right)
{
    return combine('&', left, right);
}

LDAPPropExpr operator||(const LDAPPropExpr& left, const LDAPPropExpr& right)
{
    return combine('|', left, right);
}

LDAPPropExpr& LDAPPropExpr::operator&=(const LDAPPropExpr& other)
{
    return *this = *this && other;
}

LDAPPropExpr& LDAPPropExpr::operator|=(const LDAPPropExpr& other)
{
    return *this = *this || other;
}

LDAPProp::LDAPProp(const std::string& property) : property_(property) {}

LDAPPropExpr LDAPProp::IsPresent() const
{
    return LDAPPropExpr("(" + property_ + "=*)");
}

LDAPProp::operator LDAPPropExpr() const
{
    return IsPresent();
}

LDAPPropExpr LDAPProp::operator!() const
{
    return !IsPresent();
}

LDAPPropExpr LDAPProp::compare(std::string_view op, std::string_view value) const
{
    // A comparison with nothing is a null expression, so optional criteria can be written
    // unconditionally and drop out of && and ||.
    if (value.empty()) {
        return LDAPPropExpr();
    }
    return LDAPPropExpr("(" + property_ + std::string(op) + detail::escapeFilterValue(value) + ")");
}

} // namespace cppmicroservices
