#pragma once

#include <QString>
#include <stdexcept>

namespace oxa {

// Base of every failure the library reports to the host. The message is the
// user-facing text (Czech, except for the spreadsheet reader).
class Exception : public std::runtime_error
{
public:
    explicit Exception(const QString &message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString &Message() const noexcept { return m_message; }

private:
    QString m_message;
};

// A value could not be converted (dates, numbers, colours).
class EConvertError : public Exception { using Exception::Exception; };
// An operation is not allowed in the control's current state (focusing a hidden control).
class EInvalidOperation : public Exception { using Exception::Exception; };
// A stream could not be read as expected.
class EReadError : public Exception { using Exception::Exception; };
// A stream could not be written.
class EWriteError : public Exception { using Exception::Exception; };
// A file could not be created or opened.
class EFCreateError : public Exception { using Exception::Exception; };
// A date or time value was out of range.
class EDateTimeError : public EConvertError { using EConvertError::EConvertError; };

} // namespace oxa
