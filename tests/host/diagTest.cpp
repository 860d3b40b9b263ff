#include <foundation/core/demangle.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace {

namespace diag = foundation::core::diag;

TEST(FatalAssertionDeathTest, ReportsMessageFileLineAndFunctionThenAborts) {
    EXPECT_DEATH(diag::terminate("variant broke its promise", "Widget.cpp", 42, "void ns::Widget::run(int) const"),
                 "Fatal assertion: variant broke its promise\n"
                 "  file: Widget.cpp\n"
                 "  line: 42\n"
                 "  function: void ns::Widget::run\\(int\\) const\n");
}

TEST(FatalAssertionDeathTest, AFixedSiteReplacesFileAndLineButKeepsTheCallersSignature) {
    EXPECT_DEATH(diag::terminate("identity conflict", diag::ReportSite{"LxeObjectID", 12}),
                 "Fatal assertion: identity conflict\n"
                 "  file: LxeObjectID\n"
                 "  line: 12\n"
                 "  function: [^\n]*TestBody\\(\\)\n");
}

// Whatever folder the tree was built in, and whether or not a compiler cache handed the
// compiler relative paths, sources are named from the root of the tree.
TEST(SourceNames, AreRelativeToTheSourceRoot) {
    EXPECT_STREQ(__FILE__, "tests/host/diagTest.cpp");
    EXPECT_STREQ(foundation::core::SourceLocation::current().file_name(), "tests/host/diagTest.cpp");
}

TEST(FatalAssertionDeathTest, ArmedStateStartsFromTheEnvironment) {
    // Each child re-runs this test from the start, so its armed state is read after the
    // setenv that precedes its own death statement.
    const std::string style = GTEST_FLAG_GET(death_test_style);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::pair<const char*, int> cases[] = {{"1", 1}, {"0", 0}, {"yes", 0}};
    for (const auto& [value, armed] : cases) {
        setenv("FL_DIAG_TERMINATE", value, 1);
        EXPECT_EXIT(std::exit(fl_diag_terminate() ? 1 : 0), testing::ExitedWithCode(armed), "") << value;
    }
    unsetenv("FL_DIAG_TERMINATE");
    GTEST_FLAG_SET(death_test_style, style);
}

TEST(FatalAssertion, ArmedStateCanBeSetByTests) {
    const bool initial = diag::terminationsArmed();
    diag::setTerminationsArmed(true);
    EXPECT_TRUE(fl_diag_terminate());
    diag::setTerminationsArmed(false);
    EXPECT_FALSE(diag::terminationsArmed());
    diag::setTerminationsArmed(initial);
}

TEST(Demangle, ReadableNamesWithFallbackToTheInput) {
    using foundation::core::demangle_typeid_name;
    EXPECT_EQ(demangle_typeid_name(typeid(std::map<int, double>).name()).rfind("std::map<int, double", 0), 0u);
    EXPECT_EQ(demangle_typeid_name("*i"), "int");
    EXPECT_EQ(demangle_typeid_name("not a mangled name"), "not a mangled name");
    EXPECT_EQ(demangle_typeid_name(nullptr), "");
}

} // namespace
