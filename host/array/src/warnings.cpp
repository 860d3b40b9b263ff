#include <matrix/oxArray.hpp>

#include <fl/i18n.hpp>

#include <cstdio>
#include <mutex>

namespace matrix {
namespace {

void writeToStandardError(const fl::ustring& message) {
    std::fprintf(stderr, "Warning: %s\n", fl::i18n::ustring_to_utf8(message).c_str());
    std::fflush(stderr);
}

struct WarningState {
    std::mutex mutex;
    WarningHandler handler = writeToStandardError;
};

WarningState& warningState() {
    static auto* state = new WarningState; // warnings may be raised while the process exits
    return *state;
}

} // namespace

[[gnu::tls_model("initial-exec")]] constinit thread_local WarningCapture* detail::innermostCapture = nullptr;

void handleWarning(const fl::ustring& message) {
    if (const WarningCapture* capture = detail::innermostCapture;
        capture != nullptr && capture->trampoline_(capture->target_, message)) {
        return;
    }
    WarningState& state = warningState();
    WarningHandler handler;
    {
        std::lock_guard lock(state.mutex);
        handler = state.handler;
    }
    // Called outside the lock: a handler may raise warnings or swap handlers itself.
    handler(message);
}

WarningHandler setWarningHandler(WarningHandler handler) {
    WarningState& state = warningState();
    if (!handler) handler = writeToStandardError;
    std::lock_guard lock(state.mutex);
    std::swap(state.handler, handler);
    return handler;
}

} // namespace matrix
