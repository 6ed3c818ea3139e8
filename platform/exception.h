// Base of every failure the system reports: one message text, nothing else.
#pragma once

#include <stdexcept>
#include <string>

namespace velkor {

class Exception : public std::runtime_error {
public:
    explicit Exception(const std::string& message) : std::runtime_error(message) {}
};

// A value outside the range its destination can hold (a short string index, a byte, a line number).
class ERangeError : public Exception {
public:
    ERangeError() : Exception("Range check error") {}
};

// Text that does not convert to the number it should hold.
class EConvertError : public Exception {
public:
    using Exception::Exception;
};

// A file that cannot be opened, read or written.
class EInOutError : public Exception {
public:
    using Exception::Exception;
};

} // namespace velkor
