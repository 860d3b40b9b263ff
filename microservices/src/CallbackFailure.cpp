#include "cppmicroservices/detail/CallbackFailure.h"

#include <foundation/log/Channel.hpp>

#include <exception>

namespace cppmicroservices::detail {

void reportCallbackFailure(const std::string& callback)
{
    std::string reason = "an exception that is not a std::exception";
    try {
        throw;
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
    }
    static const foundation::log::Channel& channel = foundation::log::channel("cppmicroservices::listeners");
    foundation::log::logIf(channel, 1, __FILE__, __LINE__, [&] { return callback + " threw: " + reason; });
}

} // namespace cppmicroservices::detail
