// One class of the class-object system: its name, its id and its methods. Classes are
// created by the registry (ClassRegistry.hpp) and live until the process exits, so a
// COSClass* stays valid once obtained.
#pragma once

#include <ocos/MemberAccess.hpp>

#include <matrix/oxArray.hpp>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ocos {

struct COSMethod {
    std::string name;
    // The name under which the host finds the method's code.
    std::string implementation;
    MemberAccess access;

    friend bool operator==(const COSMethod&, const COSMethod&) = default;
};

class COSClass {
public:
    COSClass(std::string name, oxClassID id);
    COSClass(const COSClass&) = delete;
    COSClass& operator=(const COSClass&) = delete;

    const std::string& getName() const noexcept { return name_; }
    oxClassID getId() const noexcept { return id_; }

    // Adds the method, or replaces the one of the same name. An empty name throws
    // std::invalid_argument.
    void addMethod(COSMethod method);
    std::optional<COSMethod> findMethod(std::string_view name) const;
    // A snapshot, in the order the methods were first added.
    std::vector<COSMethod> getMethods() const;

private:
    const std::string name_;
    const oxClassID id_;
    mutable std::mutex mutex_;
    std::vector<COSMethod> methods_;
};

} // namespace ocos
