// What WaitForStop reports. The type values are CppMicroServices' (and OSGi's).
#pragma once

#include "cppmicroservices/Bundle.h"

#include <cstdint>
#include <exception>
#include <iosfwd>
#include <string>

namespace cppmicroservices {

class FrameworkEvent {
public:
    enum Type : std::uint32_t {
        FRAMEWORK_STARTED = 0x00000001,
        FRAMEWORK_ERROR = 0x00000002,
        FRAMEWORK_WARNING = 0x00000010,
        FRAMEWORK_INFO = 0x00000020,
        FRAMEWORK_STOPPED = 0x00000040,
        FRAMEWORK_STOPPED_UPDATE = 0x00000080,
        FRAMEWORK_STOPPED_BOOTCLASSPATH_MODIFIED = 0x00000100,
        FRAMEWORK_WAIT_TIMEDOUT = 0x00000200,
    };

    // An invalid event: GetType() is FRAMEWORK_ERROR, the bundle invalid, the message empty.
    FrameworkEvent() = default;
    FrameworkEvent(Type type, Bundle bundle, std::string message = std::string(),
                   std::exception_ptr exception = nullptr);

    explicit operator bool() const;
    Type GetType() const;
    Bundle GetBundle() const;
    std::string GetMessage() const;
    // The exception that goes with the event; null when there is none.
    std::exception_ptr GetThrowable() const;

private:
    Type type_ = FRAMEWORK_ERROR;
    Bundle bundle_;
    std::string message_;
    std::exception_ptr exception_;
    bool valid_ = false;
};

// As CppMicroServices: "STARTED", "ERROR", ..., "WAIT_TIMEDOUT", and for another value
// "Unknown bundle event type (N)" (sic); an event as its type, its message and its bundle
// on separate lines, an invalid one as "NONE".
std::ostream& operator<<(std::ostream& out, FrameworkEvent::Type type);
std::ostream& operator<<(std::ostream& out, const FrameworkEvent& event);

} // namespace cppmicroservices
