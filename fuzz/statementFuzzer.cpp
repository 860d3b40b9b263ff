// The orvex session's statement reader: any line, run as statements over a few builtins
// (plus, uminus, a short colon, and eq, not, and, ctranspose for comparisons, logical
// operators and transposes) and the variables earlier lines made, either prints results or
// reports an error; it never throws, and a caret it draws stands within the line or just
// past its end. Operators, ranges, indexing, several statements a line and the workspace
// commands (who, whos, clear) go through the session as a user's lines do.
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
bool eqDouble(double a, double b) { return a == b; }
bool notDouble(double a) { return a == 0; }
bool notLogical(bool a) { return !a; }
bool andLogical(bool a, bool b) { return a && b; }

// The transpose of a real double matrix; anything else, unchanged.
oxArray* ctransposeArray(const oxArray* a) {
    if (matrix::getClassID(a) != oxDOUBLE_CLASS || matrix::isComplex(a) || !matrix::isTwoDimensional(a)) {
        return matrix::addReference(const_cast<oxArray*>(a));
    }
    const matrix::Dims dims = matrix::getDimensions(a);
    const std::size_t flipped[2] = {dims[1], dims[0]};
    oxArray* out = matrix::detail::do_create_uninitnumeric(flipped, oxDOUBLE_CLASS, oxREAL);
    for (std::size_t i = 0; i < dims[0]; ++i) {
        for (std::size_t j = 0; j < dims[1]; ++j) {
            matrix::getTypedData<double>(out)[j + i * dims[1]] = matrix::getTypedData<double>(a)[i + j * dims[0]];
        }
    }
    return out;
}

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
    static const BuiltinVariantLists eqLists{makeVariants<&eqDouble>("eq", {.isElementWise = true})};
    static const BuiltinVariantLists notLists{makeVariants<&notDouble>("not", {.isElementWise = true}),
                                              makeVariants<&notLogical>("not", {.isElementWise = true})};
    static const BuiltinVariantLists andLists{makeVariants<&andLogical>("and", {.isElementWise = true})};
    static const BuiltinVariantLists ctransposeLists{makeVariants<&ctransposeArray>("ctranspose")};
    static const RegisteredBuiltin eq("eq", "fuzz", "compares", eqLists, noDefaultImplementation("eq"));
    static const RegisteredBuiltin no("not", "fuzz", "negates logically", notLists, noDefaultImplementation("not"));
    static const RegisteredBuiltin both("and", "fuzz", "logical and", andLists, noDefaultImplementation("and"));
    static const RegisteredBuiltin ctranspose("ctranspose", "fuzz", "transposes", ctransposeLists,
                                              noDefaultImplementation("ctranspose"));
    // Sorted by name, as the session looks builtins up.
    static const std::vector<orvex::LoadedBuiltin> loaded{{"fuzz", &both},   {"fuzz", &colon}, {"fuzz", &ctranspose},
                                                          {"fuzz", &eq},     {"fuzz", &no},    {"fuzz", &plus},
                                                          {"fuzz", &uminus}};
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
            // The error is the last line of the report: earlier statements of the line may
            // have printed results before it. A caret line is blanks, then "^ ".
            std::string report = out.str();
            if (!report.empty() && report.back() == '\n') report.pop_back();
            const std::string last = report.substr(report.rfind('\n') + 1);
            const std::size_t caret = last.find_first_not_of(' ');
            if (caret != std::string::npos && last.compare(caret, 2, "^ ") == 0) {
                check(caret <= PROMPT_WIDTH + line.size());
            }
        }
    }
    return 0;
}
