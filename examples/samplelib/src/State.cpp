// counter: a builtin with state of its own. The count belongs to the process, so every
// language instance in it shares one: the builtin is not safe for several instances,
// and each call is recorded on "builtinservice::MultiOVMReporting" so that such builtins
// can be found.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/MultiOVMReporting.hpp>

#include <atomic>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

std::atomic<long> calls{0};

double counter() {
    detail::logMultiOvmReportingViolation("counter", "double");
    return static_cast<double>(++calls);
}

const BuiltinVariantLists& counterLists() {
    static const BuiltinVariantLists lists{makeVariants<&counter>("counter", {.mayHaveSideEffects = true})};
    return lists;
}

} // namespace

const BuiltinFcn& counterBuiltin() {
    static const RegisteredBuiltin builtin("counter", LIBRARY, "how often it has been called in this process",
                                           counterLists(), noDefaultImplementation("counter"));
    return builtin;
}

} // namespace samplelib
