// "lxe_objects" records built in code, and mangled names of classes that need not exist.
#pragma once

#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace test_records {

// The mangled name of the class scope::name, as typeid(...).name() spells it.
inline std::string mangled(const std::string& scope, const std::string& name) {
    return "N" + std::to_string(scope.size()) + scope + std::to_string(name.size()) + name + "E";
}

// A record in the given key order.
inline cppmicroservices::AnyMap record(std::initializer_list<std::pair<const std::string, cppmicroservices::Any>> entries) {
    return cppmicroservices::AnyMap(cppmicroservices::AnyMap::ordered_any_map(entries));
}

inline cppmicroservices::AnyMap fields(cppmicroservices::Any className, cppmicroservices::Any variantId) {
    return record({{"oxClassName", std::move(className)}, {"variantId", std::move(variantId)}});
}

} // namespace test_records
