#include <ocos/ClassRegistry.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace ocos {

namespace {

class ClassTable {
public:
    ClassTable() {
        add(std::string(LXE_OBJECT_CLASS_NAME));
        add(std::string(STRING_CLASS_NAME));
    }

    COSClass& findOrAdd(const std::string& name) {
        const std::lock_guard lock(mutex_);
        if (const auto found = byName_.find(name); found != byName_.end()) {
            return *found->second;
        }
        return add(name);
    }

    COSClass* find(std::string_view name) const {
        const std::lock_guard lock(mutex_);
        const auto found = byName_.find(name);
        return found != byName_.end() ? found->second : nullptr;
    }

    COSClass* find(oxClassID id) const {
        if (id < LXE_OBJECT_CLASS_ID) {
            return nullptr;
        }
        const auto index = static_cast<std::size_t>(id - LXE_OBJECT_CLASS_ID);
        const std::lock_guard lock(mutex_);
        return index < classes_.size() ? classes_[index].get() : nullptr;
    }

private:
    // Ids are handed out densely from LXE_OBJECT_CLASS_ID, so the class of an id sits at
    // index id - LXE_OBJECT_CLASS_ID.
    COSClass& add(const std::string& name) {
        const std::size_t next = static_cast<std::size_t>(LXE_OBJECT_CLASS_ID) + classes_.size();
        if (next > static_cast<std::size_t>(matrix::MAX_CLASS_ID)) {
            throw std::length_error("ocos::registerClass: no class id is left for '" + name + "'");
        }
        auto& added = classes_.emplace_back(std::make_unique<COSClass>(name, static_cast<oxClassID>(next)));
        byName_.emplace(name, added.get());
        return *added;
    }

    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<COSClass>> classes_;
    std::map<std::string, COSClass*, std::less<>> byName_;
};

// Never destroyed: class pointers handed out must stay valid during static destruction.
ClassTable& classTable() {
    static auto* const table = new ClassTable();
    return *table;
}

} // namespace

COSClass& registerClass(const std::string& name) {
    if (name.empty()) {
        throw std::invalid_argument("ocos::registerClass: a class needs a name");
    }
    return classTable().findOrAdd(name);
}

COSClass* findClass(std::string_view name) { return classTable().find(name); }

COSClass* findClass(oxClassID id) { return classTable().find(id); }

} // namespace ocos
