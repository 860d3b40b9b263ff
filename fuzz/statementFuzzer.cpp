// The orvex session's statement reader: any line, run as a statement over a small builtin
// and the variables earlier lines made, either prints a result or reports an error; it
// never throws, and a caret it draws stands within the statement or just past its end.
#include "Check.hpp"

#include "Session.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using fuzz::check;
using namespace Velloc::builtin::builtinreg;

double plusDouble(double a, double b) { return a + b; }

const std::vector<orvex::LoadedBuiltin>& builtins() {
    static const BuiltinVariantLists lists{makeVariants<&plusDouble>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin plus("plus", "fuzz", "adds", lists, noDefaultImplementation("plus"));
    static const std::vector<orvex::LoadedBuiltin> loaded{{"fuzz", &plus}};
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
