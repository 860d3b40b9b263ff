// The host's identified exceptions: an error that carries a message id (component and
// key) and its arguments, so that the host can translate or match it, and that formats
// itself for what(). A message id is declared as a tag type:
//
//     namespace MYCOMPONENT::errors {
//     struct badValue {
//         static constexpr std::string_view component = "MYCOMPONENT:errors";
//         static constexpr std::string_view key = "badValue";
//         static constexpr std::string_view text = "Value {0} is out of range for \"{1}\".";
//     };
//     }
//     throw Exception<MYCOMPONENT::errors::badValue>({42L, std::u16string(u"limit")});
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace foundation::core::except {

using MessageArgument = std::variant<long, std::string, std::u16string>;

struct MessageId {
    std::string component;
    std::string key;
    friend bool operator==(const MessageId&, const MessageId&) = default;
};

// Replaces each "{N}" of the template by argument N (a number in decimal, narrow text
// as is, UTF-16 text converted to UTF-8). A placeholder without an argument stays as
// written, so a missing argument shows in the message instead of vanishing.
std::string formatMessage(std::string_view messageTemplate, const std::vector<MessageArgument>& arguments);

// What the host sees of every identified exception, whatever its standard base.
class IdentifiedException {
public:
    virtual ~IdentifiedException() = default;
    virtual const MessageId& getId() const noexcept = 0;
    virtual const std::vector<MessageArgument>& getArguments() const noexcept = 0;
    virtual std::unique_ptr<IdentifiedException> clone() const = 0;
    // Throws a copy with its most derived type, so handlers keyed on that type still match.
    [[noreturn]] virtual void rethrow() const = 0;
    virtual const std::string& message() const noexcept = 0;

protected:
    IdentifiedException() = default;
    IdentifiedException(const IdentifiedException&) = default;
    IdentifiedException& operator=(const IdentifiedException&) = default;
};

template <class Id, class Base = std::exception>
class Exception : public Base, public IdentifiedException {
public:
    explicit Exception(std::vector<MessageArgument> arguments)
        : Exception(formatMessage(Id::text, arguments), std::move(arguments)) {}

    const char* what() const noexcept override { return message_.c_str(); }
    const MessageId& getId() const noexcept override { return id_; }
    const std::vector<MessageArgument>& getArguments() const noexcept override { return arguments_; }
    const std::string& message() const noexcept override { return message_; }
    std::unique_ptr<IdentifiedException> clone() const override { return std::make_unique<Exception>(*this); }
    [[noreturn]] void rethrow() const override { throw *this; }

private:
    // Takes the arguments by reference: they are moved only after the text is formed.
    Exception(std::string message, std::vector<MessageArgument>&& arguments)
        : Base(makeBase(message)),
          id_{std::string(Id::component), std::string(Id::key)},
          arguments_(std::move(arguments)),
          message_(std::move(message)) {}

    // Bases such as std::runtime_error want the text too; std::exception takes nothing.
    static Base makeBase(const std::string& message) {
        if constexpr (std::is_constructible_v<Base, const std::string&>) {
            return Base(message);
        } else {
            return Base();
        }
    }

    MessageId id_;
    std::vector<MessageArgument> arguments_;
    std::string message_;
};

} // namespace foundation::core::except
