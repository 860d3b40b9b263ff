#include <builtin/types/ArgType.hpp>
#include <builtin/types/detail/ObjectTypeBase.hpp>

#include <boost/container_hash/hash.hpp>

#include <string>

namespace Velloc::builtin::types::detail {

std::size_t ObjectTypeBase::hash() const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, static_cast<std::uint64_t>(classId_));
    boost::hash_combine(seed, variantId_);
    return seed;
}

ArgTypeList ObjectTypeBase::getGreaterPrecedenceTypes() const { return {}; }

void ObjectTypeBase::appendIds(std::string& text, unsigned long index) const {
    const std::string indexText = std::to_string(index);
    text += classId_ == oxUNKNOWN_CLASS ? "$classid" + indexText : std::to_string(classId_);
    text += ',';
    text += variantId_ == ANY_VARIANT_ID ? "$variantid" + indexText : std::to_string(variantId_);
}

} // namespace Velloc::builtin::types::detail
