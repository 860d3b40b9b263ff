// The orvex tool's literals: any text either becomes an array or raises a LiteralError
// whose caret lies within the text or just past its end. A value the printer writes as a
// literal (not a summary) reads back as an array of the same type that prints the same.
#include "Check.hpp"

#include <orvex/LiteralError.hpp>
#include <orvex/formatArray.hpp>
#include <orvex/parseLiteral.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using fuzz::check;

// Summaries ("<2x3x4 double>") and empty arrays ("[] (0x3 double)") are not literals.
bool readsBack(const std::string& printed) { return printed.front() != '<' && printed.rfind("[] (", 0) != 0; }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    matrix::ArrayPtr value;
    try {
        value = orvex::parseLiteral(text);
    } catch (const orvex::LiteralError& error) {
        check(error.column() <= text.size());
        check(error.text() == text);
        return 0;
    }
    check(value != nullptr);
    const std::string printed = orvex::formatArray(value.get());
    if (!readsBack(printed)) return 0;
    const matrix::ArrayPtr again = orvex::parseLiteral(printed);
    check(orvex::formatType(again.get()) == orvex::formatType(value.get()));
    check(orvex::formatArray(again.get()) == printed);
    return 0;
}
