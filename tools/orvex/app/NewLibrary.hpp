// `orvex new NAME [DIR]`: writes a defining library that builds out of tree against the
// installed package, ready for a first call:
//
//     DIR/CMakeLists.txt     find_package(builtin2), builtin2_add_bundle, one test
//     DIR/manifest.json      the bundle: its name, its library, its activator
//     DIR/src/Activator.cpp  publishes the library's builtins when the bundle starts
//     DIR/src/Builtins.hpp   the library's builtins and its name
//     DIR/src/Builtins.cpp   one builtin, NAME_scale, element-wise over double arrays
//
// The test runs the installed orvex on the built bundle and calls the builtin.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace orvex {

// NAME must be a C++ identifier that is no keyword (it names the bundle and the C++
// namespace); DIR must not exist yet or be an empty directory. Prints the files and the
// commands that build the library and make the first call. Returns 0, or 2 with the
// reason on err.
int writeNewLibrary(const std::string& name, const std::filesystem::path& directory, std::ostream& out,
                    std::ostream& err);

} // namespace orvex
