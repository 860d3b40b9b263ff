#include <foundation/log/Channel.hpp>

#include "LogAttributes.hpp"

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/attribute_value_impl.hpp>
#include <boost/log/attributes/constant.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>

#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <optional>
#include <set>

namespace foundation::log {

namespace logging = boost::log;

struct Channel::Logger {
    explicit Logger(const std::string& name) : source(logging::keywords::channel = name) {}
    mutable logging::sources::severity_channel_logger_mt<int, std::string> source;
    // Sinks filter while a record is opened, so the mark that sends records to standard
    // error is an attribute of the logger, present while the channel is displayed.
    std::optional<logging::attribute_set::iterator> displayedMark;
};

Channel::Channel(std::string name)
    : name_(std::move(name)), logger_(std::make_unique<Logger>(name_)) {}

Channel::~Channel() = default;

void Channel::write(int severity, const std::string& text, const char* source, int line) const {
    if (!isEnabled(severity)) return;
    logging::record record = logger_->source.open_record(logging::keywords::severity = severity);
    if (!record) return;
    logging::attribute_value_set& values = record.attribute_values();
    values.insert(attribute::SOURCE, logging::attributes::make_attribute_value(std::string(source != nullptr ? source : "")));
    values.insert(attribute::LINE, logging::attributes::make_attribute_value(line));
    logging::record_ostream stream(record);
    stream << text;
    stream.flush();
    logger_->source.push_record(std::move(record));
}

void Channel::setDisplayed(bool displayed) {
    if (displayed == logger_->displayedMark.has_value()) return;
    if (displayed) {
        logger_->displayedMark = logger_->source.add_attribute(attribute::DISPLAYED, logging::attributes::constant<bool>(true)).first;
        state_.fetch_or(DISPLAYED, std::memory_order_relaxed);
    } else {
        state_.fetch_and(~DISPLAYED, std::memory_order_relaxed);
        logger_->source.remove_attribute(*logger_->displayedMark);
        logger_->displayedMark.reset();
    }
}

void Channel::addCapture() noexcept { state_.fetch_add(ONE_CAPTURE, std::memory_order_relaxed); }

void Channel::removeCapture() noexcept { state_.fetch_sub(ONE_CAPTURE, std::memory_order_relaxed); }

namespace {

void installStandardErrorSink() {
    using Backend = logging::sinks::text_ostream_backend;
    auto backend = boost::make_shared<Backend>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&std::clog, boost::null_deleter()));
    backend->auto_flush(true);
    auto sink = boost::make_shared<logging::sinks::synchronous_sink<Backend>>(backend);
    sink->set_filter([](const logging::attribute_value_set& values) {
        return values.find(attribute::DISPLAYED) != values.end();
    });
    sink->set_formatter([](const logging::record_view& record, logging::formatting_ostream& stream) {
        stream << '[' << logging::extract_or_default<std::string>(attribute::CHANNEL, record, std::string())
               << "] " << logging::extract_or_default<std::string>(attribute::MESSAGE, record, std::string());
    });
    logging::core::get()->add_sink(sink);
}

} // namespace

// Owns every channel and the set of channels printed to standard error.
class ChannelRegistry {
public:
    static ChannelRegistry& instance() {
        static auto* registry = new ChannelRegistry; // lives until exit, like its channels
        return *registry;
    }

    Channel& get(std::string_view name) {
        std::lock_guard lock(mutex_);
        auto found = channels_.find(name);
        if (found == channels_.end()) {
            auto* created = new Channel(std::string(name));
            created->setDisplayed(isDisplayed(name));
            found = channels_.emplace(std::string(name), created).first;
        }
        return *found->second;
    }

    void display(std::string_view selection) {
        std::lock_guard lock(mutex_);
        parseSelection(selection);
        for (auto& [name, existing] : channels_) existing->setDisplayed(isDisplayed(name));
    }

private:
    ChannelRegistry() {
        installStandardErrorSink();
        if (const char* selection = std::getenv("BUILTIN2_LOG")) parseSelection(selection);
    }

    void parseSelection(std::string_view selection) {
        displayed_.clear();
        displayAll_ = false;
        while (!selection.empty()) {
            const std::size_t comma = selection.find(',');
            std::string_view item = selection.substr(0, comma);
            selection = comma == std::string_view::npos ? std::string_view() : selection.substr(comma + 1);
            const std::size_t first = item.find_first_not_of(" \t");
            if (first == std::string_view::npos) continue;
            item = item.substr(first, item.find_last_not_of(" \t") + 1 - first);
            if (item == "*") {
                displayAll_ = true;
            } else {
                displayed_.emplace(item);
            }
        }
    }

    bool isDisplayed(std::string_view name) const { return displayAll_ || displayed_.contains(name); }

    std::mutex mutex_;
    std::map<std::string, Channel*, std::less<>> channels_;
    std::set<std::string, std::less<>> displayed_;
    bool displayAll_ = false;
};

Channel& channel(std::string_view name) { return ChannelRegistry::instance().get(name); }

void enableChannels(std::string_view selection) { ChannelRegistry::instance().display(selection); }

} // namespace foundation::log
