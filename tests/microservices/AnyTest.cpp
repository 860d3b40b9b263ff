#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using cppmicroservices::Any;
using cppmicroservices::any_cast;
using cppmicroservices::AnyMap;
using cppmicroservices::BadAnyCastException;
using testing::HasSubstr;

namespace {

struct Opaque {
    int value = 0;
};

std::string castFailure(const Any& value)
{
    try {
        any_cast<int>(value);
    } catch (const std::bad_cast& error) {
        return error.what();
    }
    return "no exception";
}

} // namespace

TEST(AnyCast, FailureNamesTheHeldAndTheRequestedType)
{
    const std::string message = castFailure(Any(std::string("text")));
    EXPECT_THAT(message, HasSubstr("'std::__cxx11::basic_string<char"));
    EXPECT_THAT(message, HasSubstr("'int'"));
    EXPECT_THAT(castFailure(Any()), HasSubstr("'void'"));
    EXPECT_THAT(castFailure(Any(2L)), HasSubstr("'long'"));
    EXPECT_THROW(any_cast<double>(Any(1.0f)), BadAnyCastException);

    Any held = 7;
    EXPECT_EQ(any_cast<long>(&held), nullptr);
    EXPECT_EQ(any_cast<int>(static_cast<Any*>(nullptr)), nullptr);
    ASSERT_NE(any_cast<int>(&held), nullptr);
    EXPECT_EQ(*any_cast<int>(&held), 7);
}

TEST(AnyCast, GivesCopiesOrReferencesAndCopiesAreDeep)
{
    Any numbers = std::vector<int>{1, 2};
    any_cast<std::vector<int>&>(numbers).push_back(3);
    cppmicroservices::ref_any_cast<std::vector<int>>(numbers).push_back(4);
    EXPECT_EQ(any_cast<std::vector<int>>(numbers), (std::vector<int>{1, 2, 3, 4}));

    Any copy = numbers;
    any_cast<std::vector<int>&>(copy).clear();
    EXPECT_EQ(any_cast<const std::vector<int>&>(numbers).size(), 4u);

    Any moved = std::move(copy);
    EXPECT_TRUE(copy.Empty());
    EXPECT_EQ(moved.Type(), typeid(std::vector<int>));

    Any literal = "text";
    EXPECT_EQ(literal.Type(), typeid(const char*));
    literal = 3.5;
    EXPECT_EQ(any_cast<double>(literal), 3.5);
}

TEST(Any, TextFormsAndEquality)
{
    EXPECT_EQ(Any(std::string("a b")).ToString(), "a b");
    EXPECT_EQ(Any(-12).ToString(), "-12");
    EXPECT_EQ(Any(0.1).ToString(), "0.1");
    EXPECT_EQ(Any(true).ToString(), "true");
    EXPECT_EQ(Any(std::vector<Any>{1, std::string("x"), std::vector<Any>{}}).ToString(), "[1,x,[]]");
    AnyMap map(AnyMap::ORDERED_MAP);
    map["b"] = std::list<bool>{true, false};
    map["a"] = 1;
    EXPECT_EQ(Any(map).ToString(), "{a : 1, b : [true,false]}");
    EXPECT_EQ(Any().ToString(), "");

    EXPECT_THROW(Any(Opaque{}).ToString(), std::logic_error);
    EXPECT_EQ(Any(Opaque{}).ToStringNoExcept(), "");

    EXPECT_EQ(Any(1), Any(1));
    EXPECT_NE(Any(1), Any(2));
    EXPECT_NE(Any(1), Any(1L));
    EXPECT_EQ(Any(), Any());
    EXPECT_NE(Any(), Any(0));
    EXPECT_EQ(Any(map), Any(map));
    const Any opaque = Opaque{};
    EXPECT_EQ(opaque, opaque);
    EXPECT_NE(opaque, Any(Opaque{}));
}

TEST(AnyMap, KindsDifferInOrderAndInKeyCase)
{
    AnyMap ordered(AnyMap::ORDERED_MAP);
    for (const char* key : {"c", "a", "b"}) {
        ordered[key] = std::string(key);
    }
    std::string keys;
    for (const auto& [key, value] : ordered) {
        keys += key;
    }
    EXPECT_EQ(keys, "abc");
    EXPECT_EQ(ordered.GetType(), AnyMap::ORDERED_MAP);

    AnyMap exact(AnyMap::UNORDERED_MAP);
    exact["Key"] = 1;
    EXPECT_EQ(exact.count("key"), 0u);
    EXPECT_EQ(exact.count("Key"), 1u);

    AnyMap folded(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
    folded["Key"] = 1;
    folded["KEY"] = 2;
    EXPECT_EQ(folded.size(), 1u);
    EXPECT_EQ(any_cast<int>(folded.at("key")), 2);
    EXPECT_EQ(folded.find("kEy")->first, "Key");

    EXPECT_TRUE(folded.insert({"other", 3}).second);
    EXPECT_FALSE(folded.emplace("OTHER", 4).second);
    EXPECT_EQ(folded.erase("Other"), 1u);
    AnyMap::const_iterator position = folded.begin();
    EXPECT_EQ(position, folded.cbegin());
    EXPECT_EQ(++position, folded.cend());

    try {
        exact.at("missing");
        FAIL() << "at found a missing key";
    } catch (const std::out_of_range& error) {
        EXPECT_THAT(error.what(), HasSubstr("'missing'"));
    }
}

TEST(AnyMap, CompoundKeysWalkNestedMapsAndLists)
{
    AnyMap inner(AnyMap::ORDERED_MAP);
    inner["names"] = std::vector<Any>{std::string("x"), std::string("y")};
    AnyMap outer(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
    outer["inner"] = inner;
    outer["flat"] = 5;

    EXPECT_EQ(any_cast<std::string>(outer.AtCompoundKey("INNER.names.1")), "y");
    EXPECT_EQ(any_cast<int>(outer.AtCompoundKey("flat")), 5);

    const auto failure = [&outer](const std::string& key) {
        try {
            outer.AtCompoundKey(key);
        } catch (const std::out_of_range& error) {
            return std::string(error.what());
        }
        return std::string("no exception");
    };
    EXPECT_THAT(failure("inner.missing"), HasSubstr("'inner.missing'"));
    EXPECT_THAT(failure("inner.names.2"), HasSubstr("'inner.names.2'"));
    EXPECT_THAT(failure("flat.deeper"), HasSubstr("neither a map nor a list"));
}

TEST(AnyMap, DefaultAndListConstructionAndCompoundKeysWithADefault)
{
    const AnyMap empty;
    EXPECT_EQ(empty.GetType(), AnyMap::ORDERED_MAP);
    EXPECT_TRUE(empty.empty());
    const AnyMap nested{{"b", 2}, {"a", AnyMap{{"list", std::vector<Any>{Any(7)}}}}};
    EXPECT_EQ(nested.begin()->first, "a");
    EXPECT_EQ(any_cast<int>(nested.AtCompoundKey("a.list.0", Any(0))), 7);
    EXPECT_EQ(any_cast<int>(nested.AtCompoundKey("a.list.1", Any(-1))), -1);
    EXPECT_EQ(any_cast<int>(nested.AtCompoundKey("b.c", Any(-2))), -2);
    EXPECT_TRUE(nested.AtCompoundKey("missing", Any()).Empty());
}

TEST(Any, JsonFormsAndUncheckedCasts)
{
    // Maps spaced and control characters escaped as CppMicroServices writes them.
    const AnyMap map{{"name", std::string("a \"quoted\"\n\\")},
                     {"numbers", std::vector<Any>{Any(1), Any(2.5), Any(true), Any()}},
                     {"nan", std::numeric_limits<double>::quiet_NaN()},
                     {"opaque", std::string("\x01\b\f\r\t\x1f")}};
    EXPECT_EQ(Any(map).ToJSON(),
              R"({"name" : "a \"quoted\"\n\\", "nan" : null, "numbers" : [1,2.5,true,null], )"
              R"("opaque" : "\u0001\b\f\r\t\u001f"})");
    EXPECT_EQ(Any(AnyMap()).ToJSON(), "{}");
    EXPECT_EQ(Any().ToJSON(), "null");
    std::ostringstream out;
    cppmicroservices::any_value_to_json(out, std::vector<int>{1, 2});
    cppmicroservices::any_value_to_string(out << " ", std::vector<int>{1, 2});
    cppmicroservices::any_value_to_json(out << " ", std::map<std::string, int>{{"one", 1}, {"two", 2}});
    EXPECT_EQ(out.str(), R"([1,2] [1,2] {"one" : 1, "two" : 2})");

    Any held = 42;
    EXPECT_EQ(*cppmicroservices::unsafe_any_cast<int>(&held), 42);
    EXPECT_EQ(cppmicroservices::unsafe_any_cast<int>(static_cast<const Any*>(nullptr)), nullptr);
    const Any none;
    EXPECT_EQ(cppmicroservices::unsafe_any_cast<int>(&none), nullptr);
}

// As CppMicroServices: an iterator into no map throws std::logic_error when it is
// dereferenced, incremented or compared; copying and assigning it are fine.
TEST(AnyMap, ADefaultConstructedIteratorThrowsLogicError)
{
    AnyMap::iterator none;
    AnyMap::const_iterator constNone = none;
    EXPECT_THROW((void)*none, std::logic_error);
    EXPECT_THROW((void)none->first, std::logic_error);
    EXPECT_THROW(++none, std::logic_error);
    EXPECT_THROW(none++, std::logic_error);
    EXPECT_THROW((void)(none == none), std::logic_error);
    EXPECT_THROW((void)*constNone, std::logic_error);

    AnyMap map{{"a", 1}};
    EXPECT_THROW((void)(constNone == map.cbegin()), std::logic_error);
    EXPECT_THROW((void)(map.cbegin() != constNone), std::logic_error);
    try {
        (void)*none;
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "empty iterator");
    }
    constNone = map.cbegin();
    EXPECT_EQ(constNone->first, "a");
    EXPECT_TRUE(++constNone == map.cend());
}
