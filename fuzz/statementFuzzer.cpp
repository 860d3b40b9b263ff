// The orvex session's statement reader: any line, run as a statement over a few builtins
// (plus, uminus and a short colon) and the variables earlier lines made, either prints a
// result or reports an error; it never throws, and a caret it draws stands within the
// statement or just past its end. Operators, ranges and indexing go through the
// expression parser and the tool's indexing.
#include "Check.hpp"

#include "Session.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using fuzz::check;
using namespace Velloc::builtin::builtinreg;

double plusDouble(double a, double b) { return a + b; }
double uminusDouble(double a) { return -a; }

// Ranges of at most a thousand elements keep the arrays a line can build small.
oxArray* colonDouble(double start, double stop) {
    const double count = std::isnan(start) || std::isnan(stop) || stop < start ? 0 : std::floor(stop - start) + 1;
    const std::size_t dims[2] = {1, count <= 1000 ? static_cast<std::size_t>(count) : 0};
    oxArray* out = matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL);
    for (std::size_t k = 0; k < dims[1]; ++k) {
        matrix::getTypedData<double>(out)[k] = start + static_cast<double>(k);
    }
    return out;
}

const std::vector<orvex::LoadedBuiltin>& builtins() {
    static const BuiltinVariantLists colonLists{makeVariants<&colonDouble>("colon")};
    static const BuiltinVariantLists plusLists{makeVariants<&plusDouble>("plus", {.isElementWise = true})};
    static const BuiltinVariantLists uminusLists{makeVariants<&uminusDouble>("uminus", {.isElementWise = true})};
    static const RegisteredBuiltin colon("colon", "fuzz", "ranges", colonLists, noDefaultImplementation("colon"));
    static const RegisteredBuiltin plus("plus", "fuzz", "adds", plusLists, noDefaultImplementation("plus"));
    static const RegisteredBuiltin uminus("uminus", "fuzz", "negates", uminusLists, noDefaultImplementation("uminus"));
    static const std::vector<orvex::LoadedBuiltin> loaded{{"fuzz", &colon}, {"fuzz", &plus}, {"fuzz", &uminus}};
    return loaded;
}

// The prompt a statement is echoed after, as the session aligns its carets.
constexpr std::size_t PROMPT_WIDTH = 3;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::ostringstream out;
    orvex::Session session(builtins(), out);
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    for (std::string line; std::getline(lines, line);) {
        out.str("");
        if (!session.run(line)) {
            const std::string report = out.str();
            const std::size_t caret = report.find("^ ");
            check(caret == std::string::npos || caret <= PROMPT_WIDTH + line.size());
        }
    }
    return 0;
}
