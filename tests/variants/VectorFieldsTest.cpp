// The type fields of a variant read and write as vectors:
// inputArgTypes and outputArgTypes as std::vector<ArgType>, inputTypes and outputTypes as
// std::vector<std::string>. Code written against those types compiles and behaves as it
// does on vectors, while copies share their arrays until one of them is changed (copy on
// write): changing one copy never shows in another.
#include "VariantSamples.hpp"

#include <builtin/types/ArgType.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace samples;
using Velloc::builtin::InternedText;
using Velloc::builtin::SharedArray;
using Velloc::builtin::types::ArgTypeDirection;
using Texts = std::vector<std::string>;
using Types = std::vector<ArgType>;

// Functions written against vector field types.
std::size_t countTexts(const std::vector<std::string>& texts) { return texts.size(); }
std::string joinTexts(const std::vector<std::string>& texts) {
    return std::accumulate(texts.begin(), texts.end(), std::string(),
                           [](std::string all, const std::string& text) { return all + text + ";"; });
}
std::size_t countTypes(const std::vector<ArgType>& types) { return types.size(); }
std::size_t textLength(const std::string& text) { return text.size(); }

template <class Fields>
void appendThenDrop(Fields& fields, typename Fields::value_type value) {
    fields.push_back(std::move(value));
    fields.pop_back();
}

TEST(VariantVectorFields, TextsReadAsVectorsOfStrings) {
    const BuiltinVariant v = variant({anyArray(), scalar(oxDOUBLE_CLASS)}, {anyArray()});
    const Texts inputs{Velloc::builtin::types::toString(anyArray(), ArgTypeDirection::INPUT, 0),
                       Velloc::builtin::types::toString(scalar(oxDOUBLE_CLASS), ArgTypeDirection::INPUT, 1)};

    // Comparison with a vector, both ways round, and conversion to one.
    EXPECT_TRUE(v.inputTypes == inputs);
    EXPECT_TRUE(inputs == v.inputTypes);
    EXPECT_FALSE(v.inputTypes != inputs);
    EXPECT_TRUE(v.inputTypes != Texts{inputs[0]});
    EXPECT_EQ(v.inputTypes, inputs);
    std::vector<std::string> texts = v.outputTypes;
    EXPECT_EQ(texts, (Texts{Velloc::builtin::types::toString(anyArray(), ArgTypeDirection::OUTPUT, 0)}));
    Texts assigned;
    assigned = v.inputTypes;
    EXPECT_EQ(assigned, inputs);
    EXPECT_EQ(countTexts(v.inputTypes), 2U);
    EXPECT_EQ(joinTexts(v.inputTypes), inputs[0] + ";" + inputs[1] + ";");

    // Elements read, compare and convert as strings.
    const std::string& first = v.inputTypes[0];
    EXPECT_EQ(first, inputs[0]);
    std::string copy = v.inputTypes.front();
    EXPECT_EQ(copy, inputs[0]);
    EXPECT_TRUE(v.inputTypes[1] == inputs[1]);
    EXPECT_TRUE(inputs[1] == v.inputTypes[1]);
    EXPECT_TRUE(v.inputTypes.back() == inputs[1].c_str());
    EXPECT_EQ(textLength(v.inputTypes.at(1)), inputs[1].size());
    EXPECT_EQ(v.inputTypes[1].length(), inputs[1].size());
    EXPECT_EQ(std::string_view(v.inputTypes[1]).substr(0, 3), std::string_view(inputs[1]).substr(0, 3));
    EXPECT_EQ(v.inputTypes[0] + "!", inputs[0] + "!");
    EXPECT_EQ((v.inputTypes[0] < inputs[1]), (inputs[0] < inputs[1]));
    std::size_t total = 0;
    for (const std::string& text : v.inputTypes) {
        total += text.size();
    }
    EXPECT_EQ(total, inputs[0].size() + inputs[1].size());
    EXPECT_EQ(std::count(v.inputTypes.begin(), v.inputTypes.end(), inputs[1]), 1);
    EXPECT_NE(std::find(v.inputTypes.begin(), v.inputTypes.end(), inputs[0]), v.inputTypes.end());
    EXPECT_THROW(static_cast<void>(v.inputTypes.at(2)), std::out_of_range);
    EXPECT_EQ(std::vector<std::string>(v.inputTypes.rbegin(), v.inputTypes.rend()), (Texts{inputs[1], inputs[0]}));
}

TEST(VariantVectorFields, TextsWriteAsVectorsOfStrings) {
    BuiltinVariant v = variant({anyArray()}, {anyArray()});
    const std::string first = v.inputTypes[0];

    v.inputTypes.push_back("added");
    v.inputTypes.push_back(std::string("second"));
    v.inputTypes.emplace_back("third");
    EXPECT_EQ(v.inputTypes, (Texts{first, "added", "second", "third"}));
    v.inputTypes.pop_back();
    EXPECT_EQ(v.inputTypes, (Texts{first, "added", "second"}));
    v.inputTypes.insert(v.inputTypes.begin(), "front");
    v.inputTypes.erase(v.inputTypes.begin() + 2);
    EXPECT_EQ(v.inputTypes, (Texts{"front", first, "second"}));
    v.inputTypes.resize(2);
    EXPECT_EQ(v.inputTypes, (Texts{"front", first}));
    v.inputTypes.clear();
    EXPECT_TRUE(v.inputTypes.empty());
    EXPECT_EQ(v.inputTypes, Texts{});

    v.inputTypes = Texts{"a", "b"};
    EXPECT_EQ(v.inputTypes, (Texts{"a", "b"}));
    v.outputTypes = {"x"};
    EXPECT_EQ(v.outputTypes, Texts{"x"});
    appendThenDrop(v.outputTypes, "y");
    EXPECT_EQ(v.outputTypes, Texts{"x"});
    std::vector<std::string> local = v.inputTypes;
    local.push_back("c");
    EXPECT_EQ(v.inputTypes.size(), 2U) << "a converted vector is a copy";
}

TEST(VariantVectorFields, ArgTypesReadAndWriteAsVectorsOfArgTypes) {
    BuiltinVariant v = variant({anyArray(), scalar(oxINT8_CLASS)}, {anyArray()});
    const Types inputs{anyArray(), scalar(oxINT8_CLASS)};

    EXPECT_TRUE(v.inputArgTypes == inputs);
    EXPECT_TRUE(inputs == v.inputArgTypes);
    EXPECT_TRUE(v.outputArgTypes == Types{anyArray()});
    std::vector<ArgType> types = v.inputArgTypes;
    EXPECT_EQ(types, inputs);
    EXPECT_EQ(countTypes(v.inputArgTypes), 2U);
    const ArgType& second = v.inputArgTypes[1];
    EXPECT_EQ(second, scalar(oxINT8_CLASS));
    EXPECT_TRUE(std::holds_alternative<Velloc::builtin::types::OxArrayTypes>(v.inputArgTypes.front()));

    v.inputArgTypes.pop_back();
    EXPECT_EQ(v.inputArgTypes, Types{anyArray()});
    v.inputArgTypes.push_back(scalar(oxDOUBLE_CLASS));
    v.inputArgTypes.emplace_back(scalar(oxSINGLE_CLASS));
    EXPECT_EQ(v.inputArgTypes, (Types{anyArray(), scalar(oxDOUBLE_CLASS), scalar(oxSINGLE_CLASS)}));
    v.inputArgTypes.insert(v.inputArgTypes.begin() + 1, {scalar(oxINT16_CLASS), scalar(oxINT32_CLASS)});
    EXPECT_EQ(v.inputArgTypes, (Types{anyArray(), scalar(oxINT16_CLASS), scalar(oxINT32_CLASS),
                                      scalar(oxDOUBLE_CLASS), scalar(oxSINGLE_CLASS)}));
    v.inputArgTypes.erase(v.inputArgTypes.begin() + 1, v.inputArgTypes.begin() + 3);
    EXPECT_EQ(v.inputArgTypes, (Types{anyArray(), scalar(oxDOUBLE_CLASS), scalar(oxSINGLE_CLASS)}));
    v.inputArgTypes.clear();
    EXPECT_TRUE(v.inputArgTypes.empty());
    v.outputArgTypes = Types{scalar(oxDOUBLE_CLASS), scalar(oxDOUBLE_CLASS)};
    EXPECT_EQ(v.outputArgTypes.size(), 2U);
    v.outputArgTypes.assign(3, scalar(oxINT8_CLASS));
    EXPECT_EQ(v.outputArgTypes, Types(3, scalar(oxINT8_CLASS)));
    appendThenDrop(v.outputArgTypes, anyArray());
    EXPECT_EQ(v.outputArgTypes, Types(3, scalar(oxINT8_CLASS)));
}

// The field types have a vector's member types, so generic code that names them compiles.
TEST(VariantVectorFields, FieldsHaveTheVectorsMemberTypes) {
    using InputTypes = decltype(BuiltinVariant::inputTypes);
    using InputArgTypes = decltype(BuiltinVariant::inputArgTypes);
    static_assert(std::is_same_v<InputArgTypes::value_type, ArgType>);
    static_assert(std::is_convertible_v<InputTypes::const_reference, const std::string&>);
    static_assert(std::is_convertible_v<const InputTypes&, std::vector<std::string>>);
    static_assert(std::is_convertible_v<const InputArgTypes&, std::vector<ArgType>>);
    static_assert(std::is_convertible_v<std::vector<std::string>, InputTypes>);
    static_assert(std::is_convertible_v<std::vector<ArgType>, InputArgTypes>);
    static_assert(std::random_access_iterator<InputTypes::const_iterator>);
    static_assert(std::is_same_v<InputTypes::size_type, std::vector<std::string>::size_type>);
    SUCCEED();
}

// Copies share their arrays until one of them changes; the change stays in that copy.
TEST(VariantVectorFields, ChangingOneCopyLeavesTheOthersUnchanged) {
    const BuiltinVariant original = variant({anyArray(), scalar(oxDOUBLE_CLASS)}, {anyArray()});
    const Texts originalTexts = original.inputTypes;
    const Types originalTypes = original.inputArgTypes;

    BuiltinVariant changed = original;
    BuiltinVariant untouched = original;
    EXPECT_EQ(changed.inputArgTypes.data(), original.inputArgTypes.data()) << "copies share until changed";
    EXPECT_EQ(changed.inputTypes.data(), original.inputTypes.data());

    changed.inputTypes.push_back("extra");
    changed.inputArgTypes.pop_back();
    changed.outputTypes.clear();
    changed.outputArgTypes.push_back(scalar(oxINT8_CLASS));

    EXPECT_NE(changed.inputTypes.data(), original.inputTypes.data());
    EXPECT_EQ(changed.inputTypes, (Texts{originalTexts[0], originalTexts[1], "extra"}));
    EXPECT_EQ(changed.inputArgTypes, Types{anyArray()});
    EXPECT_TRUE(changed.outputTypes.empty());
    EXPECT_EQ(changed.outputArgTypes, (Types{anyArray(), scalar(oxINT8_CLASS)}));
    for (const BuiltinVariant* other : {&original, static_cast<const BuiltinVariant*>(&untouched)}) {
        EXPECT_EQ(other->inputTypes, originalTexts);
        EXPECT_EQ(other->inputArgTypes, originalTypes);
        EXPECT_EQ(other->outputTypes.size(), 1U);
        EXPECT_EQ(other->outputArgTypes, Types{anyArray()});
        EXPECT_EQ(other->inputArgTypes.data(), original.inputArgTypes.data()) << "the others still share";
    }

    // A copy made from the changed one shares its new arrays, and changes apart from it.
    BuiltinVariant second = changed;
    EXPECT_EQ(second.inputTypes.data(), changed.inputTypes.data());
    second.inputTypes.erase(second.inputTypes.begin());
    EXPECT_EQ(changed.inputTypes.size(), 3U);
    EXPECT_EQ(second.inputTypes, (Texts{originalTexts[1], "extra"}));
}

// Reading never copies: only a modifier gives a handle its own array.
TEST(VariantVectorFields, ReadingASharedArrayNeverCopiesIt) {
    BuiltinVariant a = variant({anyArray(), scalar(oxDOUBLE_CLASS)}, {anyArray()});
    BuiltinVariant b = a;
    const ArgType* shared = a.inputArgTypes.data();
    std::size_t seen = 0;
    for (const ArgType& type : b.inputArgTypes) {
        seen += static_cast<std::size_t>(&type - shared) + 1;
    }
    EXPECT_EQ(b.inputArgTypes[1], scalar(oxDOUBLE_CLASS));
    EXPECT_EQ(b.inputArgTypes.back(), scalar(oxDOUBLE_CLASS));
    EXPECT_EQ(seen, 3U);
    EXPECT_EQ(b.inputArgTypes.data(), shared);
}

// The array itself, with elements that count themselves, so a block freed twice, too early
// or never shows; each modifier on one copy leaves the other as it was.
struct Counted {
    static inline int alive = 0;
    Counted(int v = 0) : value(v) { ++alive; }
    Counted(const Counted& other) : value(other.value) { ++alive; }
    Counted(Counted&& other) noexcept : value(other.value) { ++alive; }
    Counted& operator=(const Counted&) = default;
    Counted& operator=(Counted&&) noexcept = default;
    ~Counted() { --alive; }
    friend bool operator==(const Counted& a, const Counted& b) { return a.value == b.value; }
    friend bool operator==(const Counted& a, int b) { return a.value == b; }
    int value;
};

std::vector<int> valuesOf(const SharedArray<Counted>& items) {
    std::vector<int> values;
    for (const Counted& item : items) {
        values.push_back(item.value);
    }
    return values;
}

TEST(SharedArrayCopyOnWrite, EveryModifierChangesOnlyItsOwnCopy) {
    Counted::alive = 0;
    {
        const SharedArray<Counted> base{Counted(1), Counted(2), Counted(3)};
        const std::vector<int> expected{1, 2, 3};
        const auto check = [&](auto&& modify, std::vector<int> after) {
            SharedArray<Counted> copy = base;
            modify(copy);
            EXPECT_EQ(valuesOf(copy), after);
            EXPECT_EQ(valuesOf(base), expected);
            // Change it again, now that it holds its array alone: in place.
            modify(copy);
            EXPECT_EQ(valuesOf(base), expected);
        };
        check([](auto& a) { a.push_back(Counted(4)); }, {1, 2, 3, 4});
        check([](auto& a) { a.emplace_back(5); }, {1, 2, 3, 5});
        check([](auto& a) { a.pop_back(); }, {1, 2});
        check([](auto& a) { a.clear(); }, {});
        check([](auto& a) { a.insert(a.begin() + 1, Counted(9)); }, {1, 9, 2, 3});
        check([](auto& a) { a.insert(a.end(), 2, Counted(7)); }, {1, 2, 3, 7, 7});
        check([](auto& a) { a.emplace(a.begin(), 0); }, {0, 1, 2, 3});
        check([](auto& a) { a.erase(a.begin()); }, {2, 3});
        check([](auto& a) { a.erase(a.begin() + 1, a.end()); }, {1});
        check([](auto& a) { a.resize(a.size() + 1); }, {1, 2, 3, 0});
        check([](auto& a) { a.resize(1, Counted(8)); }, {1});
        check([](auto& a) { a.assign({Counted(6)}); }, {6});
        check([](auto& a) { a = std::vector<Counted>{Counted(5), Counted(5)}; }, {5, 5});
        check([](auto& a) { a.reserve(a.capacity() + 10); }, {1, 2, 3});
        check([](auto& a) { a.shrink_to_fit(); }, {1, 2, 3});
        check([](auto& a) { a.push_back(a[0]); }, {1, 2, 3, 1});
        check([](auto& a) { a.insert(a.begin(), a.begin(), a.end()); }, {1, 2, 3, 1, 2, 3});
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedArrayCopyOnWrite, GrowsLikeAVectorAndKeepsItsElements) {
    Counted::alive = 0;
    {
        SharedArray<Counted> items;
        std::vector<int> expected;
        for (int i = 0; i < 100; ++i) {
            items.push_back(Counted(i));
            expected.push_back(i);
            EXPECT_GE(items.capacity(), items.size());
        }
        EXPECT_EQ(valuesOf(items), expected);
        EXPECT_EQ(Counted::alive, 100);
        const SharedArray<Counted> snapshot = items;
        while (!items.empty()) {
            items.pop_back();
        }
        EXPECT_EQ(snapshot.size(), 100U);
        EXPECT_EQ(valuesOf(snapshot), expected);
        EXPECT_EQ(Counted::alive, 100);
    }
    EXPECT_EQ(Counted::alive, 0);
}

// Elements that throw while being copied leave the array as it was.
struct Fragile {
    static inline int copiesLeft = 1000;
    static inline int alive = 0;
    explicit Fragile(int v) : value(v) { ++alive; }
    Fragile(const Fragile& other) : value(other.value) {
        if (copiesLeft-- <= 0) {
            throw std::runtime_error("copy refused");
        }
        ++alive;
    }
    ~Fragile() { --alive; }
    int value;
};

TEST(SharedArrayCopyOnWrite, AThrowingCopyLeavesBothCopiesAsTheyWere) {
    {
        const SharedArray<Fragile> base{Fragile(1), Fragile(2), Fragile(3)};
        SharedArray<Fragile> copy = base;
        Fragile::copiesLeft = 2;
        EXPECT_THROW(copy.push_back(Fragile(4)), std::runtime_error);
        Fragile::copiesLeft = 1000;
        EXPECT_EQ(copy.data(), base.data());
        EXPECT_EQ(copy.size(), 3U);
        EXPECT_EQ(Fragile::alive, 3);
    }
    EXPECT_EQ(Fragile::alive, 0);
}

} // namespace
