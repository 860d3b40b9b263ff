// What WaitForStop reports.
#pragma once

#include "cppmicroservices/Bundle.h"

#include <string>

namespace cppmicroservices {

class FrameworkEvent {
public:
    enum Type { FRAMEWORK_STARTED, FRAMEWORK_ERROR, FRAMEWORK_STOPPED, FRAMEWORK_WAIT_TIMEDOUT };

    FrameworkEvent(Type type, Bundle bundle, std::string message = std::string());

    Type GetType() const;
    Bundle GetBundle() const;
    std::string GetMessage() const;

private:
    Type type_;
    Bundle bundle_;
    std::string message_;
};

} // namespace cppmicroservices
