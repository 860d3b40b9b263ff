// Must not compile: std::vector<double> is no parameter type the framework describes, and
// the compiler's error says which types are.
#include <builtin/builtinreg/MakeVariant.hpp>

#include <vector>

namespace {

double total(const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values) sum += value;
    return sum;
}

} // namespace

std::vector<Velloc::builtin::BuiltinVariant> declareTotal() {
    return Velloc::builtin::builtinreg::makeVariants<&total>("total");
}
