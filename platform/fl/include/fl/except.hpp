// Exception bases of the foundation library, and the message-id exception template.
//
// A user-visible error of the language carries a message id: a catalog, a key and the
// arguments the catalog's text is filled with. The text itself lives in the product's message
// catalog; what() gives the error id, "catalog:key", which is what tools match on.
#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace foundation::core::except {

// The identity of a message: where its text is kept, and what fills it.
struct MessageId {
    std::string catalog;                    // e.g. "KELDOR:legacy_two_part"
    std::string key;                        // e.g. "unassignedOutputs"
    std::vector<std::u16string> arguments;  // in the order of the catalog text's holes

    friend bool operator==(const MessageId&, const MessageId&) = default;
};

// Root of the foundation's exceptions. Carries boost::exception so that error info can be
// attached on the way up.
class IException : public virtual boost::exception {
public:
    IException() = default;
    IException(const IException&) = default;
    IException& operator=(const IException&) = default;
    ~IException() override;
};

// An error meant for the user of the language, as opposed to a fault of the program.
class IUserException : public IException {
public:
    IUserException() = default;
    IUserException(const IUserException&) = default;
    IUserException& operator=(const IUserException&) = default;
    ~IUserException() override;
};

// A user error identified by a message id.
class IMsgIDException : public IUserException {
public:
    IMsgIDException() = default;
    IMsgIDException(const IMsgIDException&) = default;
    IMsgIDException& operator=(const IMsgIDException&) = default;
    ~IMsgIDException() override;

    virtual const MessageId& message_id() const noexcept = 0;

    // The error id of a message: its catalog and key joined by ':'.
    static std::string get_error_id(const MessageId& id);
};

template <class Msg, class StdBase = std::exception, class Extra = void>
class Exception;

// The message-id exception for message type Msg, which must convert to MessageId (a message
// type is a MessageId whose constructor takes the message's arguments).
template <class Msg, class StdBase>
class Exception<Msg, StdBase, void> : public IMsgIDException, public StdBase {
public:
    explicit Exception(Msg message)
        : id_(std::move(message)), errorId_(IMsgIDException::get_error_id(id_)) {}

    const MessageId& message_id() const noexcept override { return id_; }
    const char* what() const noexcept override { return errorId_.c_str(); }

private:
    MessageId id_;
    std::string errorId_;
};

}  // namespace foundation::core::except
