// The extension module peer_pybind11.py times: f with fifteen overloads over numbers that
// refuse two strings, then one that takes them, mirroring the sixteen variants of
// BM_InvokeSixteenVariantsLastMatches.
#include <pybind11/complex.h>
#include <pybind11/pybind11.h>

#include <complex>
#include <cstdint>
#include <string>

namespace {

template <class T>
void defineSame(pybind11::module_& module) {
    module.def("f", [](T a, T) { return a; });
}

} // namespace

PYBIND11_MODULE(peer_overloads, module) {
    defineSame<double>(module);
    defineSame<float>(module);
    defineSame<bool>(module);
    defineSame<std::int8_t>(module);
    defineSame<std::uint8_t>(module);
    defineSame<std::int16_t>(module);
    defineSame<std::uint16_t>(module);
    defineSame<std::int32_t>(module);
    defineSame<std::uint32_t>(module);
    defineSame<std::int64_t>(module);
    defineSame<std::uint64_t>(module);
    defineSame<std::complex<double>>(module);
    defineSame<std::complex<float>>(module);
    defineSame<double>(module);
    defineSame<float>(module);
    module.def("f", [](const std::string&, const std::string&) { return 1.0; });
}
