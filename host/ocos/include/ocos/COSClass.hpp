// One class of the class-object system: its name, its id, its methods and the finder that
// turns a method's implementation name into code. Classes are created by the registry
// (ClassRegistry.hpp) and live until the process exits, so a COSClass* stays valid once
// obtained.
#pragma once

#include <ocos/MemberAccess.hpp>
#include <ocos/Ofh.hpp>

#include <matrix/oxArray.hpp>

#include <functional>
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
    // Called without an object.
    bool isStatic = false;
    // Left out of listings shown to users; still callable.
    bool isHidden = false;
    // Cannot be replaced once added.
    bool isSealed = false;

    friend bool operator==(const COSMethod&, const COSMethod&) = default;
};

// Finds the code of a method from the class name and the method's implementation name;
// null when it has none.
using OfhFinder = std::function<Ofh_ORVEX_fn*(const std::string& className, const std::string& implementation)>;

class COSClass {
public:
    COSClass(std::string name, oxClassID id);
    COSClass(const COSClass&) = delete;
    COSClass& operator=(const COSClass&) = delete;

    const std::string& getName() const noexcept { return name_; }
    oxClassID getId() const noexcept { return id_; }

    // Adds the method, or replaces the one of the same name. An empty name throws
    // std::invalid_argument; replacing a sealed method throws std::logic_error.
    void addMethod(COSMethod method);
    std::optional<COSMethod> findMethod(std::string_view name) const;
    // A snapshot, in the order the methods were first added.
    std::vector<COSMethod> getMethods() const;

    // Replaces the finder; an empty one removes it.
    void setOfhFinder(OfhFinder finder);
    // The code of the implementation name through the finder; null without a finder.
    Ofh_ORVEX_fn* findOfh(const std::string& implementation) const;

private:
    const std::string name_;
    const oxClassID id_;
    mutable std::mutex mutex_;
    std::vector<COSMethod> methods_;
    OfhFinder finder_;
};

} // namespace ocos
