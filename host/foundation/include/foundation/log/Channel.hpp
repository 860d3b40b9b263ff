// Named diagnostic channels over Boost.Log. A channel is switched as a whole: when it
// is enabled every severity is recorded, and the severity travels with each record.
// Channels are enabled by name (enableChannels, or the environment variable
// BUILTIN2_LOG read on first use) and then print to standard error as
// "[channel] text"; a ScopedCapture enables one channel for its lifetime and collects
// its records without printing them.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace foundation::log {

class ChannelRegistry;

class Channel {
public:
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    const std::string& name() const noexcept { return name_; }

    // One relaxed load, so that a disabled channel costs nothing at its call sites.
    bool isEnabled(int /*severity*/ = 0) const noexcept {
        return state_.load(std::memory_order_relaxed) != 0;
    }

    // Emits one record, with the channel and severity attributes, when the channel is enabled.
    void write(int severity, const std::string& text, const char* source, int line) const;

private:
    friend class ChannelRegistry;
    friend class ScopedCapture;
    struct Logger;

    explicit Channel(std::string name);
    ~Channel();

    void setDisplayed(bool displayed); // called under the registry's lock
    void addCapture() noexcept;
    void removeCapture() noexcept;

    // Bit 0: printed to standard error; the bits above count the active captures.
    static constexpr std::uint32_t DISPLAYED = 1;
    static constexpr std::uint32_t ONE_CAPTURE = 2;

    std::string name_;
    std::atomic<std::uint32_t> state_{0};
    std::unique_ptr<Logger> logger_;
};

// The process-wide channel of that name, created on first use and never freed.
Channel& channel(std::string_view name);

// Forms the text (build() returns it) only when the channel is enabled.
template <class BuildText>
void logIf(const Channel& target, int severity, const char* source, int line, BuildText&& build) {
    if (target.isEnabled(severity)) {
        target.write(severity, std::forward<BuildText>(build)(), source, line);
    }
}

// Replaces the set of printed channels: comma-separated names, or "*" for every
// channel. Applies to existing channels and to those created later.
void enableChannels(std::string_view selection);

struct CapturedRecord {
    std::string channel;
    int severity = 0;
    std::string source;
    int line = 0;
    std::string text;
};

class ScopedCapture {
public:
    explicit ScopedCapture(std::string_view channelName);
    ~ScopedCapture();
    ScopedCapture(const ScopedCapture&) = delete;
    ScopedCapture& operator=(const ScopedCapture&) = delete;

    // A snapshot of the records collected so far, in the order they were written.
    std::vector<CapturedRecord> records() const;

private:
    struct Sink;
    Channel& channel_;
    std::unique_ptr<Sink> sink_;
};

} // namespace foundation::log
