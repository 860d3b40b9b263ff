// `orvex --stats ...`: how often each variant was taken while the tool ran, from the
// dispatch trace that invoke writes on "builtin2::dispatch". The trace is recorded only
// while the statistics are asked for, so calls pay nothing for them otherwise.
#pragma once

#include <foundation/log/Channel.hpp>

#include <iosfwd>

namespace orvex {

class DispatchStats {
public:
    DispatchStats();

    // One line per builtin and variant, most taken first: "     3  plus -> samplelib::plusDouble [double, double]".
    void print(std::ostream& out) const;

private:
    foundation::log::ScopedCapture trace_;
};

} // namespace orvex
