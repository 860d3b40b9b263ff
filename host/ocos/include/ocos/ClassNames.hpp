// Class names as messages show them to language users.
#pragma once

#include <matrix/oxArray.hpp>

#include <string>

namespace ocos {

// The language's name of a built-in class ("double", "logical", "cell"), the name of a
// class-object class, or "class <id>" for an id that names no class.
std::string describeClass(oxClassID id);

} // namespace ocos
