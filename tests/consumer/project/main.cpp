// A program outside the project that links the installed framework, and through it
// every host library the framework's headers speak of: arrays, host strings and engine
// objects.
#include <builtin/Parameter.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <lxe/LxeObject.hpp>
#include <matrix/oxArray.hpp>
#include <strings/String.hpp>

#include <boost/variant/get.hpp>

#include <iostream>

namespace {

// An engine object of the consumer's own class.
class Counter final : public Velloc::lxe::LxeObject {
public:
    const char* getOcosClassName() const noexcept override { return "consumer.Counter"; }
    std::size_t getCppClassVariantId() const noexcept override { return 0; }
};

} // namespace

int main() {
    matrix::ArrayPtr scalar(matrix::createScalar(2.5));
    std::cout << Velloc::builtin::types::getArgTypeOfOxArray(scalar.get()) << '\n';

    Velloc::String::String text(u"hello");
    const Velloc::lxe::LxeObjectPtr counter(new Counter);
    const Velloc::builtin::Parameter arguments[] = {&text, counter.get()};
    std::cout << "string parameter " << arguments[0].which() << ": "
              << boost::get<Velloc::String::String*>(arguments[0])->text().size() << " units\n"
              << "object parameter " << arguments[1].which() << ": "
              << boost::get<Velloc::lxe::LxeObject*>(arguments[1])->getOcosClassName() << '\n';
}
