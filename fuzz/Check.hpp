// The fuzz targets' assertion: a broken property aborts, which libFuzzer reports as a
// crash, keeping the input that broke it.
#pragma once

#include <cstdlib>

namespace fuzz {

inline void check(bool condition) {
    if (!condition) std::abort();
}

} // namespace fuzz
