// twice: a builtin that calls back into the language, and says so in its declaration.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

// x + x by whatever plus the language runs, so every class plus takes works here too.
oxArray* twice(CallContext& context, const oxArray* x) {
    oxArray* argument = const_cast<oxArray*>(x);
    return context.callOrvex("plus", {argument, argument});
}

const BuiltinVariantLists& twiceLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&twice>("twice", {.mayCallIntoOrvex = true})};
    return lists;
}

} // namespace

const BuiltinFcn& twiceBuiltin() {
    static const RegisteredBuiltin builtin("twice", LIBRARY, "x + x, computed by calling the language's plus",
                                           twiceLists(), noDefaultImplementation("twice"));
    return builtin;
}

} // namespace samplelib
