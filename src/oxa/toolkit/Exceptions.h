#pragma once

#include "oxa/oxa_export.h"

#include <QString>
#include <stdexcept>

namespace oxa {

// Base of every failure the library reports to the host. The message is the
// user-facing text (Czech, except for the spreadsheet reader).
class OXA_EXPORT Exception : public std::runtime_error
{
public:
    explicit Exception(const QString &message)
        : std::runtime_error(message.toStdString()), m_message(message)
    { }
    const QString &Message() const noexcept { return m_message; }

private:
    QString m_message;
};

// A value could not be converted (dates, numbers, colours).
class OXA_EXPORT EConvertError : public Exception
{
    using Exception::Exception;
};
// An operation is not allowed in the control's current state (focusing a hidden control).
class OXA_EXPORT EInvalidOperation : public Exception
{
    using Exception::Exception;
};
// A stream could not be read as expected.
class OXA_EXPORT EReadError : public Exception
{
    using Exception::Exception;
};
// A stream could not be written.
class OXA_EXPORT EWriteError : public Exception
{
    using Exception::Exception;
};
// A file could not be created or opened.
class OXA_EXPORT EFCreateError : public Exception
{
    using Exception::Exception;
};
// A date or time value was out of range.
class OXA_EXPORT EDateTimeError : public EConvertError
{
    using EConvertError::EConvertError;
};

} // namespace oxa
