// The exceptions of the tavi store.
//
// DoesNotExistTypeError is a TypeError, so a caller that handles the two apart catches
// DoesNotExistTypeError first.
#pragma once

#include <stdexcept>
#include <string>

namespace foundation::usm {

// Base of every error of the store.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~Error() override;
};

// The store holds a value of another type under the id, or the id was made for another type.
class TypeError : public Error {
public:
    using Error::Error;
    ~TypeError() override;
};

// The store holds no value under the id.
class DoesNotExistTypeError : public TypeError {
public:
    using TypeError::TypeError;
    ~DoesNotExistTypeError() override;
};

// insert found a value under the id already.
class AlreadyExistsError : public Error {
public:
    using Error::Error;
    ~AlreadyExistsError() override;
};

}  // namespace foundation::usm
