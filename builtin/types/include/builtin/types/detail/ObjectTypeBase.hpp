// What the object and object-place argument types share: the (host class, C++ class
// variant) pair that identifies an execution-engine object type, in which a zero class
// or an all-bits-set variant is a wildcard.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <matrix/oxArray.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace Velloc::builtin::types::detail {

class ObjectTypeBase {
public:
    static constexpr std::uint64_t ANY_VARIANT_ID = std::numeric_limits<std::uint64_t>::max();

    constexpr oxClassID getOcosClassId() const noexcept { return classId_; }
    constexpr std::uint64_t getCppClassVariantId() const noexcept { return variantId_; }

    // Class, then variant; the object's flag is not hashed.
    std::size_t hash() const noexcept;
    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection) const noexcept {
        return LxeSupportLevel::EQUIVALENT_SUPPORT;
    }
    ArgTypeList getGreaterPrecedenceTypes() const;

protected:
    constexpr ObjectTypeBase(oxClassID classId, std::uint64_t variantId) noexcept
        : classId_(classId), variantId_(variantId) {}

    constexpr bool isOpen() const noexcept {
        return classId_ == oxUNKNOWN_CLASS || variantId_ == ANY_VARIANT_ID;
    }

    // Wildcard matching, not equality: an open part matches anything.
    constexpr bool matches(const ObjectTypeBase& other) const noexcept {
        const bool classesMatch = classId_ == other.classId_ || classId_ == oxUNKNOWN_CLASS ||
                                  other.classId_ == oxUNKNOWN_CLASS;
        const bool variantsMatch = variantId_ == other.variantId_ ||
                                   variantId_ == ANY_VARIANT_ID ||
                                   other.variantId_ == ANY_VARIANT_ID;
        return classesMatch && variantsMatch;
    }

    // Open classes and variants sort after every specific one.
    constexpr bool sortsBefore(const ObjectTypeBase& other) const noexcept {
        if (classId_ != other.classId_) {
            if (other.classId_ == oxUNKNOWN_CLASS || classId_ == oxUNKNOWN_CLASS) {
                return other.classId_ == oxUNKNOWN_CLASS;
            }
            return classId_ < other.classId_;
        }
        return variantId_ < other.variantId_;
    }

    // "<class>,<variant>" with "$classid<index>" / "$variantid<index>" for open parts.
    void appendIds(std::string& text, unsigned long index) const;

private:
    oxClassID classId_;
    std::uint64_t variantId_;
};

} // namespace Velloc::builtin::types::detail
