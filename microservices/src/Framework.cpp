#include "cppmicroservices/Framework.h"
#include "cppmicroservices/FrameworkFactory.h"

#include "CoreContext.h"

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

FrameworkEvent::FrameworkEvent(Type type, Bundle bundle, std::string message)
    : type_(type), bundle_(std::move(bundle)), message_(std::move(message))
{
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

} // namespace cppmicroservices
