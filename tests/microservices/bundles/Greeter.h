// The service interface the test bundles publish, and the activator they share.
#pragma once

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <string>

namespace test_bundles {

class Greeter {
public:
    virtual ~Greeter() = default;
    virtual std::string greet() const = 0;
};

class FixedGreeter final : public Greeter {
public:
    explicit FixedGreeter(std::string greeting) : greeting_(std::move(greeting)) {}
    std::string greet() const override { return greeting_; }

private:
    std::string greeting_;
};

// Registers one Greeter, with the property "greeting", when its bundle starts.
class GreeterActivator : public cppmicroservices::BundleActivator {
public:
    explicit GreeterActivator(std::string greeting) : greeting_(std::move(greeting)) {}

    void Start(cppmicroservices::BundleContext context) override
    {
        context.RegisterService<Greeter>(std::make_shared<FixedGreeter>(greeting_), {{"greeting", greeting_}});
    }
    void Stop(cppmicroservices::BundleContext) override {}

private:
    std::string greeting_;
};

} // namespace test_bundles
