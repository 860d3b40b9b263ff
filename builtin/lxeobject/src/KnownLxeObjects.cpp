// The class-object classes that registrations resolved as engine-object classes.
#include <builtin/lxeobject/LxeObjectRegistry.hpp>

#include <mutex>
#include <unordered_set>

namespace Velloc::builtin::builtinreg {

namespace {

struct KnownLxeObjects {
    std::mutex mutex;
    std::unordered_set<oxClassID> classes;
};

KnownLxeObjects& knownLxeObjects() {
    static auto* const known = new KnownLxeObjects();
    return *known;
}

} // namespace

bool isAKnownLxeObject(const oxClassID& classId) {
    KnownLxeObjects& known = knownLxeObjects();
    const std::lock_guard lock(known.mutex);
    return known.classes.contains(classId);
}

bool addAsKnownLxeObject(const oxClassID& classId) {
    KnownLxeObjects& known = knownLxeObjects();
    const std::lock_guard lock(known.mutex);
    return known.classes.insert(classId).second;
}

} // namespace Velloc::builtin::builtinreg
