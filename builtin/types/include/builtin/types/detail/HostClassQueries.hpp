// Class ids that only the host's services know. Each is asked once per process by its
// caller and cached there; an empty answer means the service is not available.
#pragma once

#include <matrix/oxArray.hpp>

#include <optional>

namespace Velloc::builtin::types::detail {

// The class-object id of the host string class.
std::optional<oxClassID> queryStringClassId();

// The class-object id of the object class that the execution engine supports as an output.
std::optional<oxClassID> queryEngineObjectClassId();

} // namespace Velloc::builtin::types::detail
