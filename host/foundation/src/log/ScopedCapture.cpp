#include <foundation/log/Channel.hpp>

#include "LogAttributes.hpp"

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>

namespace foundation::log {
namespace {

namespace logging = boost::log;

class CaptureBackend : public logging::sinks::basic_sink_backend<logging::sinks::synchronized_feeding> {
public:
    void consume(const logging::record_view& record) {
        records.push_back(CapturedRecord{
            logging::extract_or_default<std::string>(attribute::CHANNEL, record, std::string()),
            logging::extract_or_default<int>(attribute::SEVERITY, record, 0),
            logging::extract_or_default<std::string>(attribute::SOURCE, record, std::string()),
            logging::extract_or_default<int>(attribute::LINE, record, 0),
            logging::extract_or_default<std::string>(attribute::MESSAGE, record, std::string()),
        });
    }

    std::vector<CapturedRecord> records;
};

} // namespace

struct ScopedCapture::Sink {
    boost::shared_ptr<logging::sinks::synchronous_sink<CaptureBackend>> frontend =
        boost::make_shared<logging::sinks::synchronous_sink<CaptureBackend>>();
};

ScopedCapture::ScopedCapture(std::string_view channelName)
    : channel_(channel(channelName)), sink_(std::make_unique<Sink>()) {
    sink_->frontend->set_filter([name = channel_.name()](const logging::attribute_value_set& values) {
        return logging::extract_or_default<std::string>(attribute::CHANNEL, values, std::string()) == name;
    });
    logging::core::get()->add_sink(sink_->frontend);
    channel_.addCapture();
}

ScopedCapture::~ScopedCapture() {
    channel_.removeCapture();
    logging::core::get()->remove_sink(sink_->frontend);
}

std::vector<CapturedRecord> ScopedCapture::records() const { return sink_->frontend->locked_backend()->records; }

} // namespace foundation::log
