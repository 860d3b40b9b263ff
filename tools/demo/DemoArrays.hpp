// The host arrays the demo classifies: one or more of every class the host knows.
#pragma once

#include <matrix/oxArray.hpp>

#include <string>
#include <vector>

namespace demo {

struct NamedArray {
    std::string description;
    matrix::ArrayPtr array;
};

std::vector<NamedArray> makeDemoArrays();

} // namespace demo
