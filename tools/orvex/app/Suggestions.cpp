#include "Suggestions.hpp"

#include <algorithm>
#include <numeric>

namespace orvex {

namespace {

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

} // namespace

std::vector<std::string> nearestNames(std::string_view name, const std::vector<std::string>& candidates) {
    const std::size_t limit = std::max<std::size_t>(1, name.size() / 3);
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        if (const std::size_t distance = editDistance(name, candidate); distance <= limit) {
            near.emplace_back(distance, candidate);
        }
    }
    std::sort(near.begin(), near.end());
    std::vector<std::string> names;
    for (std::size_t i = 0; i < near.size() && i < 3; ++i) {
        names.push_back(near[i].second);
    }
    return names;
}

} // namespace orvex
