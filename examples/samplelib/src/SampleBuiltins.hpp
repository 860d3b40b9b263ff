// The builtins of the sample library, each defined in the file of its theme.
#pragma once

#include <builtin/BuiltinFcn.hpp>

namespace samplelib {

using Velloc::builtin::BuiltinFcn;

const BuiltinFcn& plusBuiltin();
const BuiltinFcn& absBuiltin();
const BuiltinFcn& upperBuiltin();
const BuiltinFcn& strjoinBuiltin();
const BuiltinFcn& sizeBuiltin();
const BuiltinFcn& classBuiltin();
const BuiltinFcn& describeBuiltin();
const BuiltinFcn& reciprocalBuiltin();
const BuiltinFcn& checkedSqrtBuiltin();
const BuiltinFcn& nchoosekBuiltin();
const BuiltinFcn& twiceBuiltin();
const BuiltinFcn& counterBuiltin();
const BuiltinFcn& minusBuiltin();
const BuiltinFcn& timesBuiltin();
const BuiltinFcn& rdivideBuiltin();
const BuiltinFcn& powerBuiltin();
const BuiltinFcn& uminusBuiltin();
const BuiltinFcn& uplusBuiltin();
const BuiltinFcn& colonBuiltin();
const BuiltinFcn& sqrtBuiltin();
const BuiltinFcn& hypotBuiltin();
const BuiltinFcn& eqBuiltin();
const BuiltinFcn& neBuiltin();
const BuiltinFcn& ltBuiltin();
const BuiltinFcn& leBuiltin();
const BuiltinFcn& gtBuiltin();
const BuiltinFcn& geBuiltin();
const BuiltinFcn& andBuiltin();
const BuiltinFcn& orBuiltin();
const BuiltinFcn& notBuiltin();
const BuiltinFcn& transposeBuiltin();
const BuiltinFcn& ctransposeBuiltin();
const BuiltinFcn& sumBuiltin();
const BuiltinFcn& prodBuiltin();
const BuiltinFcn& meanBuiltin();
const BuiltinFcn& anyBuiltin();
const BuiltinFcn& allBuiltin();
const BuiltinFcn& maxBuiltin();
const BuiltinFcn& minBuiltin();

inline constexpr const char* LIBRARY = "samplelib";

} // namespace samplelib
