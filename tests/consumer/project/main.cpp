// A program outside the project that links the installed framework.
#include <builtin/types/ArgType.hpp>
#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <matrix/oxArray.hpp>

#include <iostream>

int main() {
    matrix::ArrayPtr scalar(matrix::createScalar(2.5));
    std::cout << Velloc::builtin::types::getArgTypeOfOxArray(scalar.get()) << '\n';
}
