#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <foundation/log/Channel.hpp>

#include <boost/algorithm/string/join.hpp>

namespace Velloc::builtin::builtinreg {

bool registerPackageFunctionHelper(const std::vector<std::string>& packageParts, const std::string& functionName,
                                   Ofh_ORVEX_fn* function) {
    if (const auto& service = getOCOSRegWrapper()) {
        return service->registerPackageFunction(packageParts, functionName, function);
    }
    static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::registerpkgfcn");
    foundation::log::logIf(channel, 0, __FILE__, __LINE__, [&] {
        return "Unable to register " + boost::algorithm::join(packageParts, ".") + "." + functionName +
               " because IOCOSRegWrapper cppmicroservice could not be found.";
    });
    return false;
}

} // namespace Velloc::builtin::builtinreg
