#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkFactory.h"

#include "CoreContext.h"

#include <ostream>
#include <stdexcept>

namespace cppmicroservices {

namespace {

std::shared_ptr<detail::FrameworkOwner> ownerOf(const Bundle& systemBundle)
{
    const auto& bundle = detail::BundleAccess::get(systemBundle);
    if (!bundle || bundle->id() != 0) {
        throw std::invalid_argument("only the system bundle (id 0) is a framework");
    }
    auto owner = bundle->core()->owner().lock();
    if (!owner) {
        throw std::invalid_argument("the framework of this system bundle no longer exists");
    }
    return owner;
}

} // namespace

Framework::Framework(const Bundle& systemBundle) : Framework(ownerOf(systemBundle)) {}

Framework::Framework(std::shared_ptr<detail::FrameworkOwner> owner)
    : Bundle(owner->core()->systemBundle()), owner_(std::move(owner))
{
}

void Framework::Init()
{
    owner_->core()->initFramework();
}

void Framework::Start()
{
    owner_->core()->startFramework();
}

void Framework::Stop()
{
    owner_->core()->stopFramework();
}

FrameworkEvent Framework::WaitForStop(const std::chrono::milliseconds& timeout)
{
    return owner_->core()->waitForStop(timeout);
}

Framework FrameworkFactory::NewFramework(const FrameworkConfiguration& configuration)
{
    auto owner = std::make_shared<detail::FrameworkOwner>(detail::CoreContext::create(configuration));
    owner->core()->setOwner(owner);
    return Framework(std::move(owner));
}

FrameworkEvent::FrameworkEvent(Type type, Bundle bundle, std::string message, std::exception_ptr exception)
    : type_(type), bundle_(std::move(bundle)), message_(std::move(message)), exception_(std::move(exception)),
      valid_(true)
{
}

FrameworkEvent::operator bool() const
{
    return valid_;
}

FrameworkEvent::Type FrameworkEvent::GetType() const
{
    return type_;
}

Bundle FrameworkEvent::GetBundle() const
{
    return bundle_;
}

std::string FrameworkEvent::GetMessage() const
{
    return message_;
}

std::exception_ptr FrameworkEvent::GetThrowable() const
{
    return exception_;
}

std::ostream& operator<<(std::ostream& out, FrameworkEvent::Type type)
{
    switch (type) {
    case FrameworkEvent::FRAMEWORK_STARTED:
        return out << "STARTED";
    case FrameworkEvent::FRAMEWORK_ERROR:
        return out << "ERROR";
    case FrameworkEvent::FRAMEWORK_WARNING:
        return out << "WARNING";
    case FrameworkEvent::FRAMEWORK_INFO:
        return out << "INFO";
    case FrameworkEvent::FRAMEWORK_STOPPED:
        return out << "STOPPED";
    case FrameworkEvent::FRAMEWORK_STOPPED_UPDATE:
        return out << "STOPPED_UPDATE";
    case FrameworkEvent::FRAMEWORK_STOPPED_BOOTCLASSPATH_MODIFIED:
        return out << "STOPPED_BOOTCLASSPATH_MODIFIED";
    case FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT:
        return out << "WAIT_TIMEDOUT";
    }
    return out << "Unknown bundle event type (" << static_cast<unsigned int>(type) << ")";
}

std::ostream& operator<<(std::ostream& out, const FrameworkEvent& event)
{
    if (!event) {
        return out << "NONE";
    }
    std::string exception = "NONE";
    if (const std::exception_ptr thrown = event.GetThrowable()) {
        try {
            std::rethrow_exception(thrown);
        } catch (const std::exception& error) {
            exception = error.what();
        } catch (...) {
            exception = "an exception that is not a std::exception";
        }
    }
    return out << event.GetType() << "\n " << event.GetMessage() << "\n " << event.GetBundle() << "\n Exception: "
               << exception;
}

} // namespace cppmicroservices
