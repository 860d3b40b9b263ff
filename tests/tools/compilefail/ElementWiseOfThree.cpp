// Must not compile: an element-wise function maps one or two numeric scalars to one, and
// the compiler's error names that rule.
#include <builtin/builtinreg/MakeVariant.hpp>

namespace {

double sumOfThree(double a, double b, double c) { return a + b + c; }

} // namespace

std::vector<Velloc::builtin::BuiltinVariant> declareSumOfThree() {
    return Velloc::builtin::builtinreg::makeVariants<&sumOfThree>("sumOfThree", {.isElementWise = true});
}
