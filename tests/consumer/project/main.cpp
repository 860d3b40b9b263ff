// A program outside the project that links the installed framework, and through it
// every host library the framework's headers speak of: arrays, host strings and engine
// objects; and an engine-object class of its own, taken by a builtin as a typed
// parameter, as a module written out of tree would; and the example buffer's headers.
#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/lxeobject/CppLxeObjectImpl.hpp>
#include <builtin/lxeobject/LxeObjectBridge.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <lxe/LxeObject.hpp>
#include <lxebuffer/Buffer.hpp>
#include <matrix/oxArray.hpp>
#include <strings/String.hpp>

#include <boost/variant/get.hpp>

#include <iostream>
#include <vector>

namespace consumer {

// An engine object of the consumer's own class, seen through its base only.
class Plain final : public Velloc::lxe::LxeObject {
public:
    const char* getOcosClassName() const noexcept override { return "consumer.Counter"; }
    std::size_t getCppClassVariantId() const noexcept override { return 0; }
};

// An engine-object class written as a module writes one; its record would be its manifest's.
class Tally final : public Velloc::builtin::lxeobject::CppLxeObjectImpl<Tally> {
public:
    static inline Velloc::builtin::builtinreg::LxeObjectId lxeObjectId;
    double count = 3;
};

double tallyCount(const Tally* tally) { return tally->count; }

} // namespace consumer

int main() {
    using namespace Velloc::builtin;
    matrix::ArrayPtr scalar(matrix::createScalar(2.5));
    std::cout << types::getArgTypeOfOxArray(scalar.get()) << '\n';

    Velloc::String::String text(u"hello");
    const Velloc::lxe::LxeObjectPtr plain(new consumer::Plain);
    const Parameter arguments[] = {&text, plain.get()};
    std::cout << "string parameter " << arguments[0].which() << ": "
              << boost::get<Velloc::String::String*>(arguments[0])->text().size() << " units\n"
              << "object parameter " << arguments[1].which() << ": "
              << boost::get<Velloc::lxe::LxeObject*>(arguments[1])->getOcosClassName() << '\n';

    cppmicroservices::AnyMap fields(cppmicroservices::AnyMap::UNORDERED_MAP);
    fields["oxClassName"] = std::string("consumer.Tally");
    fields["variantId"] = 0;
    cppmicroservices::AnyMap record(cppmicroservices::AnyMap::UNORDERED_MAP);
    record[typeid(consumer::Tally).name()] = fields;
    types::addLxeObjectRuntimeInfo(record);
    lxeobject::defineClass("consumer.Tally");
    lxeobject::registerLxeObjectClass<consumer::Tally>(false);
    static const builtinreg::BuiltinVariantLists lists{builtinreg::makeVariants<&consumer::tallyCount>("tallyCount")};
    const builtinreg::RegisteredBuiltin tallyCount("tallyCount", "consumer", "", lists,
                                                   builtinreg::noDefaultImplementation("tallyCount"));
    matrix::ArrayPtr tally(lxeobject::toOxArray(new consumer::Tally, "consumer.Tally"));
    oxArray* in[] = {tally.get()};
    oxArray* out = nullptr;
    tallyCount.invoke(1, &out, 1, in, BuiltinFcn::NoLxe);
    std::cout << "tallyCount: " << *matrix::getTypedData<double>(matrix::ArrayPtr(out).get()) << '\n';
    in[0] = scalar.get();
    const std::string report = builtinreg::describeNoMatch(tallyCount, 1, 1, in);
    const std::size_t refusal = report.find("the variant takes");
    std::cout << report.substr(refusal, report.find('\n', refusal) - refusal) << '\n';

    std::cout << "buffer of " << lxebuffer::Buffer::create(std::vector<double>{1, 2})->size() << '\n';
}
