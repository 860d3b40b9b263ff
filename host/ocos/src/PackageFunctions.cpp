#include <ocos/PackageFunctions.hpp>

#include <map>
#include <mutex>
#include <stdexcept>

namespace ocos {

namespace {

struct FunctionTable {
    std::mutex mutex;
    std::map<std::string, Ofh_ORVEX_fn*, std::less<>> functions;
};

FunctionTable& functionTable() {
    static auto* const table = new FunctionTable();
    return *table;
}

std::string qualifiedNameOf(const std::vector<std::string>& packageParts, const std::string& functionName) {
    std::string name;
    for (const std::string& part : packageParts) {
        if (part.empty()) {
            throw std::invalid_argument("ocos::registerPackageFunction: a package name part is empty");
        }
        name += part;
        name += '.';
    }
    if (functionName.empty()) {
        throw std::invalid_argument("ocos::registerPackageFunction: the function name is empty");
    }
    return name + functionName;
}

} // namespace

bool registerPackageFunction(const std::vector<std::string>& packageParts, const std::string& functionName,
                             Ofh_ORVEX_fn* function) {
    std::string name = qualifiedNameOf(packageParts, functionName);
    if (function == nullptr) {
        throw std::invalid_argument("ocos::registerPackageFunction: no function given for '" + name + "'");
    }
    FunctionTable& table = functionTable();
    const std::lock_guard lock(table.mutex);
    const auto [bound, inserted] = table.functions.try_emplace(std::move(name), function);
    return inserted || bound->second == function;
}

Ofh_ORVEX_fn* findPackageFunction(std::string_view qualifiedName) {
    FunctionTable& table = functionTable();
    const std::lock_guard lock(table.mutex);
    const auto found = table.functions.find(qualifiedName);
    return found != table.functions.end() ? found->second : nullptr;
}

} // namespace ocos
