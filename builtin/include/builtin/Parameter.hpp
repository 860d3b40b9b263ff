// One unboxed argument or result of a variant. The alternatives are in a fixed order:
// the index is part of the interface with compiled code, which passes arrays of these.
// Pointer alternatives are borrowed for one call; a Parameter never owns what they
// point to.
#pragma once

#include <lxe/LxeObjectFwd.hpp>
#include <matrix/oxArray.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/variant.hpp>

#include <complex>

namespace Velloc::String {
class String;
}

namespace Velloc::builtin {

using ParameterBase = boost::variant<unsigned long, double, float, bool, signed char, short, int, long,
                                     unsigned char, unsigned short, unsigned int, std::complex<double>,
                                     std::complex<float>, oxArray*, Velloc::String::String*,
                                     Velloc::lxe::LxeObject*>;

// A class rather than an alias so that the engine's interfaces can name it without
// seeing the union. A default-constructed Parameter holds the uint64 value 0.
class Parameter : public ParameterBase {
public:
    using ParameterBase::ParameterBase;
    Parameter() = default;
};

inline constexpr int NUM_PARAMETER_ALTERNATIVES = 16;

} // namespace Velloc::builtin
