// upper and strjoin: text in, text out. Each text parameter takes a char row vector or a
// scalar string, so every combination of the two is a variant.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <string>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

std::u16string upper(std::u16string text) {
    for (char16_t& c : text) {
        if (c >= u'a' && c <= u'z') {
            c = static_cast<char16_t>(c - u'a' + u'A');
        }
    }
    return text;
}

std::u16string strjoin2(std::u16string_view a, std::u16string_view b) {
    std::u16string joined(a);
    joined += u' ';
    joined += b;
    return joined;
}

std::u16string strjoin3(std::u16string_view a, std::u16string_view b, std::u16string_view separator) {
    std::u16string joined(a);
    joined += separator;
    joined += b;
    return joined;
}

const BuiltinVariantLists& upperLists() {
    static const BuiltinVariantLists lists{makeVariants<&upper>("upper")};
    return lists;
}

const BuiltinVariantLists& strjoinLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&strjoin2>("strjoin"),
        makeVariants<&strjoin3>("strjoin"),
    };
    return lists;
}

} // namespace

const BuiltinFcn& upperBuiltin() {
    static const RegisteredBuiltin builtin("upper", LIBRARY, "converts text to upper case", upperLists(),
                                           noDefaultImplementation("upper"));
    return builtin;
}

const BuiltinFcn& strjoinBuiltin() {
    static const RegisteredBuiltin builtin("strjoin", LIBRARY, "joins two texts with a blank or a separator",
                                           strjoinLists(), noDefaultImplementation("strjoin"));
    return builtin;
}

} // namespace samplelib
