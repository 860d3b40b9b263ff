// An engine environment that records what reaches it, in order, for the tests to read.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace elementwise_test {

class RecordingEnvironment : public Velloc::lxe::ILxeBuiltinEnvironment, public Velloc::lxe::ILxeBuiltinAccessors {
public:
    void AddWarningMessage(const std::u16string& message) override { events.push_back(message); }
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return this; }
    void SetInternalPendingException() override {
        try {
            throw;
        } catch (const std::exception& e) {
            const std::string what = e.what();
            events.push_back(u"error: " + std::u16string(what.begin(), what.end()));
        }
    }

    // Warnings as given, errors as "error: " + what().
    std::vector<std::u16string> events;
};

} // namespace elementwise_test
