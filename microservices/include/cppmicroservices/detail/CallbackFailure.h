// What a callback of the framework's users (a listener, a tracker's customizer) throws is
// reported and goes no further, so that the others still hear the event and the registry's
// state stays as it was.
#pragma once

#include <string>

namespace cppmicroservices::detail {

// Reports the exception in flight on the log channel "cppmicroservices::listeners", as
// "<callback> threw: <what>"; called from a catch block.
void reportCallbackFailure(const std::string& callback);

// Runs call; what it throws is reported as thrown by the callback that name() names.
template <class Call, class Name>
void callReporting(Call&& call, Name&& name)
{
    try {
        call();
    } catch (...) {
        reportCallbackFailure(name());
    }
}

} // namespace cppmicroservices::detail
