#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <foundation/log/Channel.hpp>

#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg {

bool registerPackageFunctionHelper(const std::vector<std::string>& packageParts, const std::string& functionName,
                                   Ofh_ORVEX_fn* function) {
    if (const auto& service = getOCOSRegWrapper()) {
        return service->registerPackageFunction(packageParts, functionName, function);
    }
    static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::registerpkgfcn");
    foundation::log::logIf(channel, 0, __FILE__, __LINE__, [&] {
        // The package parts joined with dots, appended one by one: GCC 12 reports a false
        // -Wrestrict on boost::algorithm::join's inserts once this is inlined here.
        std::string text = "Unable to register ";
        const char* separator = "";
        for (const std::string& part : packageParts) {
            text += separator;
            text += part;
            separator = ".";
        }
        return text + "." + functionName + " because IOCOSRegWrapper cppmicroservice could not be found.";
    });
    return false;
}

} // namespace Velloc::builtin::builtinreg
