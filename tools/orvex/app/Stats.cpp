#include "Stats.hpp"

#include <algorithm>
#include <iomanip>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace orvex {

DispatchStats::DispatchStats() : trace_("builtin2::dispatch") {}

void DispatchStats::print(std::ostream& out) const {
    // A record reads "builtin: list -> variant"; the list does not matter here.
    std::map<std::string, std::size_t> hits;
    for (const foundation::log::CapturedRecord& record : trace_.records()) {
        const std::size_t colon = record.text.find(": ");
        const std::size_t arrow = record.text.find(" -> ");
        if (colon != std::string::npos && arrow != std::string::npos) {
            ++hits[record.text.substr(0, colon) + record.text.substr(arrow)];
        }
    }
    std::vector<std::pair<std::string, std::size_t>> sorted(hits.begin(), hits.end());
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    out << "calls per variant:\n";
    for (const auto& [variant, count] : sorted) {
        out << std::setw(6) << count << "  " << variant << '\n';
    }
}

} // namespace orvex
