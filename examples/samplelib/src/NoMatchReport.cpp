#include "NoMatchReport.hpp"

#include <algorithm>

namespace samplelib {

std::string sizeText(const oxArray* array) {
    std::string text;
    for (const std::size_t extent : matrix::getDimensions(array)) {
        text += (text.empty() ? "" : "x") + std::to_string(extent);
    }
    return text;
}

void rejectSizeMismatch(int nrhs, oxArray* const* prhs) {
    if (nrhs != 2 || prhs[0] == nullptr || prhs[1] == nullptr) {
        return;
    }
    const matrix::Dims a = matrix::getDimensions(prhs[0]);
    const matrix::Dims b = matrix::getDimensions(prhs[1]);
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        const std::size_t m = i < a.size() ? a[i] : 1;
        const std::size_t n = i < b.size() ? b[i] : 1;
        if (m != n && m != 1 && n != 1) {
            throw foundation::core::except::Exception<errors::sizeMismatch>({sizeText(prhs[0]), sizeText(prhs[1])});
        }
    }
}

} // namespace samplelib
