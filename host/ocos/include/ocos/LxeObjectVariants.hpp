// The C++ class variants that modules registered as execution-engine objects of a
// class-object class.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <vector>

namespace ocos {

struct LxeObjectVariant {
    std::size_t variantId = 0;
    bool flag = false;

    friend bool operator==(const LxeObjectVariant&, const LxeObjectVariant&) = default;
};

// Records the variant for the class, replacing an earlier record of the same variant id.
// Returns false, recording nothing, when no class has that id.
bool recordLxeObjectVariant(oxClassID classId, const LxeObjectVariant& variant);

// The variants recorded for the class, by ascending variant id.
std::vector<LxeObjectVariant> getLxeObjectVariants(oxClassID classId);

} // namespace ocos
