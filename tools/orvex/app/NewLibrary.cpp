#include "NewLibrary.hpp"

#include <foundation/filesystem/paths.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <ostream>
#include <string_view>
#include <utility>

namespace orvex {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view CMAKE_LISTS = R"(# @NAME@: a defining library of builtins, built as a bundle against the installed
# builtin2 package. Build it, run its test, and call its builtin:
#
#   cmake -S . -B build -DCMAKE_PREFIX_PATH=<where builtin2 is installed>
#   cmake --build build
#   ctest --test-dir build --output-on-failure
#   orvex --bundles build/modules call @NAME@_scale '[1 2 3]' 2
cmake_minimum_required(VERSION 3.25)
project(@NAME@ LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)

find_package(builtin2 CONFIG REQUIRED)

# The bundle: the library, named as manifest.json says, beside a copy of the manifest in
# build/modules/@NAME@, the folder orvex --bundles build/modules loads.
builtin2_add_bundle(@NAME@
  MANIFEST manifest.json
  OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/modules/@NAME@
  SOURCES src/Activator.cpp src/Builtins.cpp)

# The first test: the installed orvex loads the bundle beside the default ones and calls
# the builtin. Anything orvex reports while it loads (a bundle it skipped, a variant no
# interpreted call reaches) starts with "orvex: " and fails the test.
enable_testing()
add_test(NAME @NAME@.first_call
  COMMAND builtin2::orvex --bundles ${CMAKE_BINARY_DIR}/modules call @NAME@_scale "[1 2 3]" 2)
set_tests_properties(@NAME@.first_call PROPERTIES
  PASS_REGULAR_EXPRESSION "ans = \\[2 4 6\\]"
  FAIL_REGULAR_EXPRESSION "orvex: ")
)";

constexpr std::string_view MANIFEST = R"({
  "bundle": {
    "symbolic_name": "@NAME@",
    "library": "lib@NAME@.so",
    "activator": true,
    "description": "@NAME@: builtins written with builtin2"
  }
}
)";

constexpr std::string_view BUILTINS_HPP = R"(// The builtins of @NAME@, each defined in Builtins.cpp (or a file of its own).
#pragma once

#include <builtin/BuiltinFcn.hpp>

namespace @NAME@ {

// The library's name, as orvex list shows it and as the manifest's "symbolic_name" says.
inline constexpr const char* LIBRARY = "@NAME@";

const Velloc::builtin::BuiltinFcn& scaleBuiltin();

} // namespace @NAME@
)";

constexpr std::string_view BUILTINS_CPP = R"(// A builtin is one or more ordinary C++ functions, its variants. The framework derives
// what each variant takes from its C++ signature: double, float, bool and the
// fixed-width integers are numeric scalars, const oxArray* takes any host array,
// std::u16string_view (or std::string, std::u16string) takes text. README, "Writing
// builtins", says how to choose them.
#include "Builtins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

namespace @NAME@ {

using namespace Velloc::builtin::builtinreg;

namespace {

// Declared element-wise, a function of one or two numeric scalars also takes arrays of
// their class, element by element, with singleton dimensions broadcast:
// @NAME@_scale([1 2 3], 2) is [2 4 6].
double scale(double x, double factor) { return x * factor; }

} // namespace

const Velloc::builtin::BuiltinFcn& scaleBuiltin() {
    // Static: the builtin spans these lists for as long as the library is loaded.
    static const BuiltinVariantLists lists{
        makeVariants<&scale>("@NAME@_scale", {.isElementWise = true}),
    };
    // Without a default implementation, a call no variant takes gets the report of every
    // variant and why it refused.
    static const RegisteredBuiltin builtin("@NAME@_scale", LIBRARY, "multiplies an array by a factor",
                                           lists, noDefaultImplementation("@NAME@_scale"));
    return builtin;
}

} // namespace @NAME@
)";

constexpr std::string_view ACTIVATOR_CPP = R"(// Publishes the library's builtins when the bundle starts: orvex and the host find them
// through this IBuiltinLibrary service.
#include "Builtins.hpp"

#include <builtin/services/IBuiltinLibrary.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <string>
#include <vector>

namespace @NAME@ {

namespace {

class Library final : public Velloc::builtin::IBuiltinLibrary {
public:
    std::string getLibraryName() const override { return LIBRARY; }
    // Each builtin is made the first time this is called; add new builtins here.
    std::vector<const Velloc::builtin::BuiltinFcn*> getBuiltins() const override { return {&scaleBuiltin()}; }
};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Velloc::builtin::IBuiltinLibrary>(std::make_shared<Library>(),
                                                                 {{"library", std::string(LIBRARY)}});
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace

} // namespace @NAME@

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(@NAME@::Activator, @NAME@)
)";

constexpr std::array<std::string_view, 20> RESERVED{
    "alignas", "auto",   "bool",  "case",  "char",   "class", "const",  "default", "delete", "double",
    "float",   "int",    "long",  "namespace", "new", "operator", "return", "std", "template", "void"};

bool isIdentifier(const std::string& name) {
    if (name.empty() || !(std::isalpha(static_cast<unsigned char>(name[0])) != 0 || name[0] == '_')) {
        return false;
    }
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; });
}

std::string filled(std::string_view text, const std::string& name) {
    std::string out(text);
    for (std::size_t at = out.find("@NAME@"); at != std::string::npos; at = out.find("@NAME@", at + name.size())) {
        out.replace(at, 6, name);
    }
    return out;
}

// The prefix to give find_package: the installation root when it holds the package.
std::string packagePrefix() {
    const fs::path root = foundation::filesystem::getInstallRoot();
    std::error_code error;
    if (fs::exists(root / "lib/cmake/builtin2/builtin2Config.cmake", error)) {
        return fs::absolute(root, error).lexically_normal().string();
    }
    return "<where builtin2 is installed>";
}

// A path to show in the commands: as given, quoted when it holds a blank.
std::string shown(const fs::path& path) {
    const std::string text = path.string();
    return text.find(' ') == std::string::npos ? text : "'" + text + "'";
}

} // namespace

int writeNewLibrary(const std::string& name, const std::filesystem::path& directory, std::ostream& out,
                    std::ostream& err) {
    if (!isIdentifier(name) || std::find(RESERVED.begin(), RESERVED.end(), name) != RESERVED.end()) {
        err << "orvex new: the name '" << name
            << "' must be a C++ identifier that is no keyword (letters, digits and '_', not starting with a "
               "digit): it names the bundle and the library's namespace\n";
        return 2;
    }
    std::error_code error;
    if (fs::exists(directory, error) && !(fs::is_directory(directory, error) && fs::is_empty(directory, error))) {
        err << "orvex new: " << directory.string() << " exists and is not an empty directory; nothing written\n";
        return 2;
    }
    const std::pair<const char*, std::string_view> files[] = {
        {"CMakeLists.txt", CMAKE_LISTS},   {"manifest.json", MANIFEST},         {"src/Builtins.hpp", BUILTINS_HPP},
        {"src/Builtins.cpp", BUILTINS_CPP}, {"src/Activator.cpp", ACTIVATOR_CPP},
    };
    fs::create_directories(directory / "src", error);
    if (error) {
        err << "orvex new: cannot create " << (directory / "src").string() << ": " << error.message() << '\n';
        return 2;
    }
    for (const auto& [file, text] : files) {
        std::ofstream stream(directory / file, std::ios::binary);
        stream << filled(text, name);
        if (!stream) {
            err << "orvex new: cannot write " << (directory / file).string() << '\n';
            return 2;
        }
    }
    const std::string dir = shown(directory);
    out << "orvex new: wrote the library " << name << " in " << directory.string() << ":\n"
        << "  CMakeLists.txt     the build: find_package(builtin2), builtin2_add_bundle, one test\n"
        << "  manifest.json      the bundle: its name, its library, its activator\n"
        << "  src/Builtins.cpp   the builtin " << name << "_scale: write your functions here\n"
        << "  src/Builtins.hpp   the library's builtins and its name\n"
        << "  src/Activator.cpp  publishes the builtins when the bundle starts\n"
        << "Build it, test it and make the first call:\n"
        << "  cmake -S " << dir << " -B " << shown(directory / "build") << " -DCMAKE_PREFIX_PATH=" << packagePrefix()
        << '\n'
        << "  cmake --build " << shown(directory / "build") << '\n'
        << "  ctest --test-dir " << shown(directory / "build") << " --output-on-failure\n"
        << "  orvex --bundles " << shown(directory / "build" / "modules") << " call " << name
        << "_scale '[1 2 3]' 2\n";
    return 0;
}

} // namespace orvex
