// A few argument types as a builtin author would declare them.
#pragma once

#include <builtin/types/ArgType.hpp>

#include <string>
#include <vector>

namespace demo {

struct NamedDeclaration {
    std::string label;
    Velloc::builtin::types::ArgType type;
};

std::vector<NamedDeclaration> makeDemoDeclarations();

} // namespace demo
