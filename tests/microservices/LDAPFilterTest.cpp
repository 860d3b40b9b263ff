#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/LDAPProp.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <list>
#include <string>
#include <vector>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;
using cppmicroservices::LDAPProp;
using testing::HasSubstr;

namespace {

AnyMap properties(std::initializer_list<std::pair<const std::string, Any>> entries)
{
    return AnyMap(AnyMap::unordered_any_map(entries));
}

// Each filter must match the map exactly when its flag says so.
void expectMatches(const AnyMap& map, std::initializer_list<std::pair<const char*, bool>> filters)
{
    for (const auto& [filter, expected] : filters) {
        EXPECT_EQ(LDAPFilter(filter).Match(map), expected) << filter;
    }
}

} // namespace

TEST(LDAPFilterParse, MalformedFiltersNameTheProblemAndItsPosition)
{
    struct Case {
        std::string filter;
        std::string problem;
        std::size_t position;
    };
    const std::vector<Case> cases = {
        {"", "expected '('", 0},
        {"name=x", "expected '('", 0},
        {"(name=x", "missing ')'", 7},
        {"(=x)", "missing attribute name", 1},
        {"(name~x)", "expected '=' after '~'", 6},
        {"(name)", "expected one of '=', '~=', '<=', '>='", 5},
        {"(&)", "expected '(' after '&'", 2},
        {"(|x)", "expected '(' after '|'", 2},
        {"(a=b)(c=d)", "unexpected text after the filter", 5},
        {"(a=(b))", "unescaped '(' in a value", 3},
        {"(a=b\\", "missing character after '\\'", 5},
        {"(!(a=b)(c=d))", "expected ')'", 7},
    };
    for (const Case& c : cases) {
        try {
            LDAPFilter filter(c.filter);
            ADD_FAILURE() << "accepted " << c.filter;
        } catch (const std::invalid_argument& error) {
            EXPECT_THAT(error.what(), HasSubstr("\"" + c.filter + "\""));
            EXPECT_THAT(error.what(), HasSubstr(c.problem + " at position " + std::to_string(c.position)))
                << c.filter;
        }
    }
}

TEST(LDAPFilterMatch, EqualityIsExactAndApproximationIgnoresCaseAndSpace)
{
    const AnyMap map = properties({{"name", std::string("Hello World")}, {"literal", "c string"}});
    expectMatches(map, {
        {"(name=Hello World)", true},
        {"(name=hello world)", false},
        {"(name=Hello)", false},
        {"(name~=  helloWORLD )", true},
        {"(name~=hello)", false},
        {"(literal=c string)", true},
        {"(absent=x)", false},
        {"(name=Hello\\ World)", true},
    });
}

TEST(LDAPFilterMatch, AttributeNamesIgnoreCaseExceptUnderMatchCase)
{
    for (const auto kind : {AnyMap::ORDERED_MAP, AnyMap::UNORDERED_MAP, AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS}) {
        AnyMap map(kind);
        map["Started-In"] = std::string("builtin2/builtin");
        EXPECT_TRUE(LDAPFilter("(started-in=builtin2/builtin)").Match(map)) << kind;
        EXPECT_TRUE(LDAPFilter("(STARTED-IN=*)").Match(map)) << kind;
        EXPECT_FALSE(LDAPFilter("(started-in=builtin2/builtin)").MatchCase(map)) << kind;
        EXPECT_TRUE(LDAPFilter("(Started-In=builtin2/builtin)").MatchCase(map)) << kind;
    }
}

TEST(LDAPFilterMatch, KeysDifferingOnlyInCaseChooseTheExactCaseOrRefuse)
{
    for (const auto kind : {AnyMap::ORDERED_MAP, AnyMap::UNORDERED_MAP}) {
        AnyMap map(kind);
        map["hosed"] = 1;
        map["HOSED"] = 2;
        EXPECT_TRUE(LDAPFilter("(hosed=1)").Match(map)) << kind;
        EXPECT_TRUE(LDAPFilter("(HOSED=2)").Match(map)) << kind;
        EXPECT_FALSE(LDAPFilter("(HOSED=1)").Match(map)) << kind;
        try {
            LDAPFilter("(Hosed=1)").Match(map);
            ADD_FAILURE() << "an ambiguous attribute matched in map kind " << kind;
        } catch (const std::invalid_argument& error) {
            EXPECT_THAT(error.what(), HasSubstr("differ only in case")) << kind;
        }
        map.erase("HOSED");
        EXPECT_TRUE(LDAPFilter("(Hosed=1)").Match(map)) << kind;
    }
}

TEST(LDAPFilterMatch, SubstringsAndPresence)
{
    const AnyMap map = properties({{"path", std::string("bin/lnxv64/builtinservices")},
                                   {"empty", std::string()},
                                   {"star", std::string("a*b")},
                                   {"number", 42}});
    expectMatches(map, {
        {"(path=bin/*)", true},
        {"(path=*services)", true},
        {"(path=bin*lnx*builtin*)", true},
        {"(path=*builtin*lnx*)", false},
        {"(path=bin/lnxv64/builtinservices*s)", false},
        {"(empty=*)", true},
        {"(empty=)", true},
        {"(missing=*)", false},
        {"(star=a\\*b)", true},
        {"(star=a\\*)", false},
        {"(number=*)", true},
        {"(number=4*)", false},
    });
}

TEST(LDAPFilterMatch, OrderingIsNumericWhenBothSidesAreNumbers)
{
    const AnyMap map = properties({{"text", std::string("10")},
                                   {"word", std::string("abc")},
                                   {"count", 5},
                                   {"size", std::uint64_t{std::numeric_limits<std::uint64_t>::max()}},
                                   {"offset", -3L},
                                   {"ratio", 0.25},
                                   {"flag", true}});
    expectMatches(map, {
        {"(text>=9)", true},
        {"(text<=9)", false},
        {"(word<=abd)", true},
        {"(word>=abd)", false},
        {"(count=5)", true},
        {"(count= 5 )", true},
        {"(count>=4.5)", true},
        {"(count<=4)", false},
        {"(count=five)", false},
        {"(size>=18446744073709551615)", true},
        {"(size>=-1)", true},
        {"(offset<=18446744073709551615)", true},
        {"(offset>=-3)", true},
        {"(ratio=0.25)", true},
        {"(ratio<=1e0)", true},
        {"(flag=TRUE)", true},
        {"(flag=false)", false},
        {"(flag=1)", false},
    });
}

TEST(LDAPFilterMatch, SequencesMatchWhenOneElementMatches)
{
    const AnyMap map = properties({{"tags", std::vector<std::string>{"fast", "exact"}},
                                   {"mixed", std::vector<Any>{1, std::string("two"), std::vector<Any>{3.5}}},
                                   {"ids", std::list<int>{4, 8}}});
    expectMatches(map, {
        {"(tags=exact)", true},
        {"(tags=slow)", false},
        {"(mixed=two)", true},
        {"(mixed=1)", true},
        {"(mixed=3.5)", true},
        {"(ids>=8)", true},
        {"(ids>=9)", false},
        {"(!(ids=5))", true},
    });
}

TEST(LDAPFilterMatch, NestedLogic)
{
    const AnyMap map = properties({{"a", 1}, {"b", 2}});
    expectMatches(map, {
        {"(&(a=1)(|(b=3)(!(c=*))))", true},
        {"(&(a=1)(|(b=3)(c=*)))", false},
        {" ( | (a=9) (b=2) ) ", true},
        {"(!(&(a=1)(b=2)))", false},
        {"(&(a=1)(a=1)(a=1)(b>=1))", true},
    });
}

TEST(LDAPFilter, NormalisedTextAndComparison)
{
    const LDAPFilter filter(" ( & ( a = x\\*y ) (b=*) (c=p*q) (d~=1) ) ");
    EXPECT_EQ(filter.ToString(), "(&(a= x\\*y )(b=*)(c=p*q)(d~=1))");
    EXPECT_EQ(LDAPFilter(filter.ToString()), filter);
    EXPECT_FALSE(LDAPFilter("(a=1)") == LDAPFilter("(a=2)"));

    const LDAPFilter invalid;
    EXPECT_FALSE(invalid);
    EXPECT_TRUE(filter);
    EXPECT_FALSE(invalid.Match(properties({{"a", 1}})));
    EXPECT_EQ(invalid.ToString(), "");
}

TEST(LDAPProp, BuildsEscapedFilterText)
{
    using cppmicroservices::LDAPPropExpr;
    EXPECT_EQ(std::string(LDAPProp("name") == "x(1)*"), "(name=x\\(1\\)\\*)");
    EXPECT_EQ(std::string(LDAPProp("n") >= 2 && LDAPProp("n") <= 2.5), "(&(n>=2)(n<=2.5))");
    EXPECT_EQ(std::string(LDAPProp("a") != true || LDAPProp("b").Approx("X y")), "(|(!(a=true))(b~=X y))");
    EXPECT_EQ(std::string(LDAPProp("a").IsPresent()), "(a=*)");
    EXPECT_EQ(std::string(LDAPPropExpr(LDAPProp("a"))), "(a=*)");
    EXPECT_EQ(std::string(!LDAPProp("a")), "(!(a=*))");
    EXPECT_EQ(std::string(LDAPProp("a") == Any(7)), "(a=7)");

    const LDAPPropExpr null;
    EXPECT_TRUE(null.IsNull());
    EXPECT_EQ(std::string(null && LDAPProp("a") == 1), "(a=1)");
    EXPECT_EQ(std::string(LDAPProp("a") == 1 || null), "(a=1)");
    EXPECT_TRUE((!null).IsNull());
    LDAPPropExpr built;
    built &= LDAPProp("a") == 1;
    built |= LDAPProp("b") == 2;
    built &= LDAPProp("c") == "";
    EXPECT_EQ(std::string(built), "(|(a=1)(b=2))");
    // Comparisons with nothing drop out, as optional criteria do.
    EXPECT_TRUE((LDAPProp("k") == "").IsNull());
    EXPECT_TRUE((LDAPProp("k") != std::string()).IsNull());
    EXPECT_EQ(std::string(LDAPProp("k") == "" && LDAPProp("a") == 1), "(a=1)");
    EXPECT_EQ(std::string(LDAPProp("a") == 1 || LDAPProp("k") >= ""), "(a=1)");

    const LDAPFilter literal(LDAPProp("name") == "x(1)*");
    EXPECT_TRUE(literal.Match(properties({{"name", std::string("x(1)*")}})));
    EXPECT_FALSE(literal.Match(properties({{"name", std::string("x(1)*y")}})));
}
