#include "bare_thunk.hpp"

#include <cstring>

namespace bench_wrappers {

// In a shared library of its own, so the benchmark calls it through its pointer across
// libraries, as the engine calls a thunk, and it makes the call the thunk makes: nothing more.
InlineCResult bareThunk(const void* callee, const double* arguments) {
    const auto fcn = reinterpret_cast<double (*)(double, double)>(const_cast<void*>(callee));
    const double value = fcn(arguments[0], arguments[1]);
    InlineCResult record{1, 0};
    std::memcpy(&record.value, &value, sizeof value);
    return record;
}

} // namespace bench_wrappers
