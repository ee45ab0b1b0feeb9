#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>
#include <optional>

namespace oxa {

// The character set of a Hunspell dictionary, converted by our own tables for
// the sets Czech dictionaries come in (UTF-8, ISO 8859-2, code page 1250,
// ISO 8859-1) and by Qt's converters for any other set Qt knows.
class DictionaryCharset
{
public:
    enum Kind { Unknown, Utf8, Latin1, Latin2, Cp1250, Other };

    // The set of a SET line's name ("UTF-8", "ISO8859-2", "microsoft-cp1250").
    static DictionaryCharset FromName(const QByteArray &name);
    // The name on the SET line of an affix file; ISO8859-1, Hunspell's
    // default, when the file names none; nothing when it cannot be read.
    static std::optional<QByteArray> ReadSetLine(const QString &affixPath);

    Kind Type() const { return m_kind; }
    bool IsValid() const { return m_kind != Unknown; }
    // The bytes of a word; nothing when a character has no place in the set.
    std::optional<QByteArray> Encode(QStringView text) const;
    QString Decode(QByteArrayView bytes) const;

private:
    Kind m_kind = Unknown;
    QByteArray m_name;
};

} // namespace oxa
