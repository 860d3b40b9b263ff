// Names close to a misspelt one, for "did you mean" hints.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvex {

// The candidates within a small edit distance of name (a third of its length, at least
// one), nearest first, at most three.
std::vector<std::string> nearestNames(std::string_view name, const std::vector<std::string>& candidates);

} // namespace orvex
