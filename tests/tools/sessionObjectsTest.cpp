// A session over engine objects of classes that offer less than the buffer does: no
// display method, no property access, no indexing; and two classes whose constructors
// share a name.
#include "Session.hpp"

#include <lxe/LxeObjectArrays.hpp>
#include <lxe/LxeObjectTypeRegistry.hpp>
#include <ocos/ClassRegistry.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace {

class Plain final : public Velloc::lxe::LxeObject {
public:
    const char* getOcosClassName() const noexcept override { return "sessiontest.Plain"; }
    std::size_t getCppClassVariantId() const noexcept override { return 0; }
};

void makePlain(int, oxArray** plhs, int, oxArray**) {
    const oxClassID id = ocos::findClass("sessiontest.Plain")->getId();
    plhs[0] = Velloc::lxe::createLxeObjectArray(id, Velloc::lxe::ConstLxeObjectPtr(new Plain));
}

void nothing(int, oxArray**, int, oxArray**) {}

// sessiontest.Plain with its constructor and a method "value"; other.Plain with a
// constructor of the same name.
void defineClasses() {
    static const bool defined = [] {
        for (const char* name : {"sessiontest.Plain", "other.Plain"}) {
            ocos::COSClass& cls = ocos::registerClass(name);
            Velloc::lxe::registerLxeObjectType(cls.getId(), 0, false);
            cls.setOfhFinder([](const std::string&, const std::string& implementation) -> Ofh_ORVEX_fn* {
                return implementation == "Plain" ? &makePlain : &nothing;
            });
            cls.addMethod({"Plain", "Plain", {}, true, false, false});
            cls.addMethod({"value", "value", {}, false, false, false});
        }
        return true;
    }();
    (void)defined;
}

std::string transcript(std::initializer_list<const char*> statements) {
    defineClasses();
    const std::vector<orvex::LoadedBuiltin> builtins;
    std::ostringstream out;
    orvex::Session session(builtins, out);
    for (const char* statement : statements) {
        session.run(statement);
    }
    return out.str();
}

TEST(SessionObjects, WhatAClassDoesNotOfferIsNamed) {
    const std::string out =
        transcript({"p = sessiontest.Plain()", "p.value", "p(end)", "p(1) = 2", "p.value = 1", "q = p"});
    EXPECT_THAT(out, testing::HasSubstr("p = <1x1 sessiontest.Plain>\n"));
    EXPECT_THAT(out, testing::HasSubstr("objects of class 'sessiontest.Plain' have no property access (getProperty); "
                                        "'value' is a method: call it as p.value()\n"));
    EXPECT_THAT(out, testing::HasSubstr("Error: objects of class 'sessiontest.Plain' variant 0 cannot be indexed\n"));
    EXPECT_THAT(out, testing::HasSubstr("cannot assign to 'p.value': objects of class 'sessiontest.Plain' take no "
                                        "property assignment\n"));
    EXPECT_THAT(out, testing::HasSubstr("q = <1x1 sessiontest.Plain>\n"));
}

TEST(SessionObjects, AConstructorNameTwoClassesShareMustBeQualified) {
    const std::string out = transcript({"p = Plain()"});
    EXPECT_THAT(out, testing::HasSubstr("'Plain' is the constructor of classes '"));
    EXPECT_THAT(out, testing::HasSubstr("': name the class in full\n"));
}

} // namespace
