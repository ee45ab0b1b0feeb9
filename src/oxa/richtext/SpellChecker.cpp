#include "oxa/richtext/SpellChecker.h"
#include "oxa/richtext/SpellChecker_p.h"

#include "oxa/toolkit/CodePage1250.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStringDecoder>
#include <QStringEncoder>
#include <condition_variable>
#include <hunspell.h>
#include <mutex>
#include <thread>

namespace oxa {

namespace {

// ISO 8859-2 from 0xA0 up; the lower half is ASCII and the C1 controls.
constexpr char16_t Latin2High[96] = {
    0x00A0, 0x0104, 0x02D8, 0x0141, 0x00A4, 0x013D, 0x015A, 0x00A7, 0x00A8, 0x0160, 0x015E, 0x0164,
    0x0179, 0x00AD, 0x017D, 0x017B, 0x00B0, 0x0105, 0x02DB, 0x0142, 0x00B4, 0x013E, 0x015B, 0x02C7,
    0x00B8, 0x0161, 0x015F, 0x0165, 0x017A, 0x02DD, 0x017E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102,
    0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170,
    0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

std::optional<char> Latin2Byte(char16_t unit)
{
    if (unit < 0xA0)
        return char(unit);
    for (int i = 0; i < 96; ++i) {
        if (Latin2High[i] == unit)
            return char(0xA0 + i);
    }
    return std::nullopt;
}

QByteArray NormalisedName(const QByteArray &name)
{
    QByteArray n = name.trimmed().toUpper();
    n.replace('-', "");
    n.replace('_', "");
    return n;
}

// Units and dosage forms that reports write in lower case and without a dot,
// which the dictionary does not know: tablets, capsules, ampoules, drops,
// injections, suppositories, ointment, beats per minute, and the short forms
// of diagnosis, status, laboratory, objective and subjective findings and
// of the right side (dx).
const QSet<QString> &BuiltInAbbreviations()
{
    static const QSet<QString> words = {
        QStringLiteral("tbl"), QStringLiteral("tab"), QStringLiteral("cps"), QStringLiteral("caps"),
        QStringLiteral("amp"), QStringLiteral("gtt"), QStringLiteral("inj"), QStringLiteral("supp"),
        QStringLiteral("ung"), QStringLiteral("bpm"), QStringLiteral("mcg"), QStringLiteral("dg"),
        QStringLiteral("st"),  QStringLiteral("lab"), QStringLiteral("obj"), QStringLiteral("subj"),
        QStringLiteral("dx"),
    };
    return words;
}

bool IsWordChar(QChar c)
{
    return c.isLetterOrNumber() || c.isMark();
}

constexpr int ShortAbbreviation = 5;
constexpr qsizetype CacheLimit = 200000;

} // namespace

DictionaryCharset DictionaryCharset::FromName(const QByteArray &name)
{
    DictionaryCharset set;
    set.m_name = name.trimmed();
    const QByteArray n = NormalisedName(name);
    if (n == "UTF8")
        set.m_kind = Utf8;
    else if (n == "ISO88592" || n == "LATIN2")
        set.m_kind = Latin2;
    else if (n == "ISO88591" || n == "LATIN1")
        set.m_kind = Latin1;
    else if (n == "CP1250" || n == "WINDOWS1250" || n == "MICROSOFTCP1250")
        set.m_kind = Cp1250;
    else if (QStringEncoder(set.m_name.constData()).isValid())
        set.m_kind = Other;
    return set;
}

std::optional<QByteArray> DictionaryCharset::ReadSetLine(const QString &affixPath)
{
    QFile file(affixPath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith("SET") && line.size() > 3 && (line[3] == ' ' || line[3] == '\t'))
            return line.mid(4).trimmed();
    }
    return QByteArray("ISO8859-1");
}

std::optional<QByteArray> DictionaryCharset::Encode(QStringView text) const
{
    QByteArray bytes;
    switch (m_kind) {
    case Unknown:
        return std::nullopt;
    case Utf8:
        return text.toUtf8();
    case Latin1:
        for (QChar c : text) {
            if (c.unicode() > 0xFF)
                return std::nullopt;
        }
        return text.toLatin1();
    case Latin2:
        bytes.reserve(text.size());
        for (QChar c : text) {
            const auto b = Latin2Byte(c.unicode());
            if (!b)
                return std::nullopt;
            bytes.append(*b);
        }
        return bytes;
    case Cp1250:
        bytes = CodePage1250::FromUnicode(text);
        for (int i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == CodePage1250::Replacement && text[i] != u'?')
                return std::nullopt;
        }
        return bytes;
    case Other: {
        QStringEncoder encoder(m_name.constData());
        bytes = encoder.encode(text);
        if (encoder.hasError())
            return std::nullopt;
        return bytes;
    }
    }
    return std::nullopt;
}

QString DictionaryCharset::Decode(QByteArrayView bytes) const
{
    QString text;
    switch (m_kind) {
    case Unknown:
        return {};
    case Utf8:
        return QString::fromUtf8(bytes);
    case Latin1:
        return QString::fromLatin1(bytes);
    case Latin2:
        text.reserve(bytes.size());
        for (char b : bytes) {
            const auto u = static_cast<unsigned char>(b);
            text.append(QChar(u < 0xA0 ? char16_t(u) : Latin2High[u - 0xA0]));
        }
        return text;
    case Cp1250:
        return CodePage1250::ToUnicode(bytes);
    case Other:
        return QStringDecoder(m_name.constData()).decode(bytes);
    }
    return text;
}

class SpellChecker::Private
{
public:
    QString affixPath;
    QString dictionaryPath;
    DictionaryCharset charset;
    bool available = false;

    // Guards the handle, the cache and the personal words: the dictionary is
    // read on a thread of its own and a host may check words from any thread.
    mutable std::mutex mutex;
    Hunhandle *handle = nullptr;
    bool loaded = false;
    std::condition_variable loadedCondition;
    std::thread loader;
    QHash<QString, bool> cache;
    QSet<QString> personal;

    ~Private()
    {
        if (loader.joinable())
            loader.join();
        if (handle)
            Hunspell_destroy(handle);
    }

    // Reads the dictionary; called with the mutex not held.
    Hunhandle *Read() const
    {
        return Hunspell_create(QFile::encodeName(affixPath).constData(),
                               QFile::encodeName(dictionaryPath).constData());
    }

    bool InDictionary(QStringView word)
    {
        std::lock_guard lock(mutex);
        if (!handle)
            return true;
        const QString key = word.toString();
        const auto hit = cache.constFind(key);
        if (hit != cache.constEnd())
            return *hit;
        const auto bytes = charset.Encode(word);
        const bool correct = bytes && Hunspell_spell(handle, bytes->constData()) != 0;
        if (cache.size() >= CacheLimit)
            cache.clear();
        cache.insert(key, correct);
        return correct;
    }

    bool IsPersonal(QStringView word) const
    {
        std::lock_guard lock(mutex);
        if (personal.isEmpty())
            return false;
        const QString w = word.toString();
        return personal.contains(w) || personal.contains(w.toLower());
    }
};

SpellChecker::SpellChecker(const QString &affixPath, QObject *parent)
    : QObject(parent), d(std::make_unique<Private>())
{
    d->affixPath = affixPath;
    d->dictionaryPath = affixPath.endsWith(QLatin1String(".aff"))
        ? affixPath.chopped(4) + QLatin1String(".dic")
        : affixPath + QLatin1String(".dic");
    if (const auto name = DictionaryCharset::ReadSetLine(affixPath))
        d->charset = DictionaryCharset::FromName(*name);
    d->available = d->charset.IsValid() && QFileInfo(d->dictionaryPath).isReadable();
}

SpellChecker::~SpellChecker() = default;

QString SpellChecker::DefaultAffixPath()
{
    return QStringLiteral("/usr/share/hunspell/cs_CZ.aff");
}

SpellChecker *SpellChecker::Shared()
{
    // Created once, thread-safely, on first use; the dictionary itself is
    // read only when the first word is to be checked.
    static SpellChecker shared(DefaultAffixPath());
    return &shared;
}

bool SpellChecker::IsAvailable() const
{
    return d->available;
}

bool SpellChecker::IsReady()
{
    if (!d->available)
        return false;
    std::lock_guard lock(d->mutex);
    if (!d->loader.joinable()) {
        d->loader = std::thread([this] {
            Hunhandle *handle = d->Read();
            {
                std::lock_guard lock(d->mutex);
                d->handle = handle;
                d->loaded = true;
            }
            d->loadedCondition.notify_all();
            QMetaObject::invokeMethod(
                this, [this] { Q_EMIT Loaded(); }, Qt::QueuedConnection);
        });
    }
    return d->loaded;
}

bool SpellChecker::EnsureLoaded()
{
    if (!d->available)
        return false;
    IsReady();
    std::unique_lock lock(d->mutex);
    d->loadedCondition.wait(lock, [this] { return d->loaded; });
    return d->handle != nullptr;
}

QString SpellChecker::Encoding() const
{
    const auto name = DictionaryCharset::ReadSetLine(d->affixPath);
    return name ? QString::fromLatin1(*name) : QString();
}

bool SpellChecker::IsCorrect(QStringView word)
{
    if (!EnsureLoaded())
        return true;
    return d->IsPersonal(word) || d->InDictionary(word);
}

QStringList SpellChecker::Suggest(const QString &word, int max)
{
    QStringList result;
    if (!EnsureLoaded())
        return result;
    const auto bytes = d->charset.Encode(word);
    if (!bytes)
        return result;
    std::lock_guard lock(d->mutex);
    char **list = nullptr;
    const int count = Hunspell_suggest(d->handle, &list, bytes->constData());
    for (int i = 0; i < count && result.size() < max; ++i)
        result.append(d->charset.Decode(QByteArrayView(list[i])));
    if (list)
        Hunspell_free_list(d->handle, &list, count);
    return result;
}

bool SpellChecker::IsAbbreviation(QStringView text, int start, int length)
{
    const QStringView word = text.mid(start, length);
    bool allUpper = true;
    bool innerUpper = false;
    for (int i = 0; i < word.size(); ++i) {
        if (word[i] == u'.')
            return true; // p.o., i.v., s.c.
        if (!word[i].isUpper())
            allUpper = false;
        else if (i > 0)
            innerUpper = true;
    }
    if (allUpper && length <= ShortAbbreviation)
        return true;
    if (innerUpper && !allUpper)
        return true; // mmHg, pH, SpO
    if (BuiltInAbbreviations().contains(word.toString().toLower()))
        return true;
    // A short word with a dot after which the sentence goes on in lower case.
    const int after = start + length;
    if (length <= ShortAbbreviation && after < text.size() && text[after] == u'.') {
        int next = after + 1;
        while (next < text.size() && text[next].isSpace())
            ++next;
        if (next < text.size() &&
            (text[next].isLower() || text[next].isDigit() || text[next] == u',' ||
             text[next] == u')'))
            return true;
    }
    return false;
}

QList<SpellRange> SpellChecker::Misspelled(QStringView text)
{
    QList<SpellRange> ranges;
    if (!EnsureLoaded())
        return ranges;
    int i = 0;
    const int size = int(text.size());
    while (i < size) {
        if (!IsWordChar(text[i])) {
            ++i;
            continue;
        }
        // A word, with the inner dots of a dotted abbreviation (p.o.).
        const int start = i;
        bool digits = false;
        while (i < size &&
               (IsWordChar(text[i]) ||
                (text[i] == u'.' && i + 1 < size && text[i + 1].isLetter() && i > start))) {
            digits = digits || text[i].isDigit();
            ++i;
        }
        const int length = i - start;
        if (digits || length < 2 || IsAbbreviation(text, start, length))
            continue;
        const QStringView word = text.mid(start, length);
        if (!d->IsPersonal(word) && !d->InDictionary(word))
            ranges.append({start, length});
    }
    return ranges;
}

QStringList SpellChecker::PersonalWords() const
{
    std::lock_guard lock(d->mutex);
    QStringList words(d->personal.begin(), d->personal.end());
    words.sort();
    return words;
}

void SpellChecker::SetPersonalWords(const QStringList &words)
{
    {
        std::lock_guard lock(d->mutex);
        d->personal = QSet<QString>(words.begin(), words.end());
    }
    Q_EMIT PersonalWordsChanged();
}

void SpellChecker::AddPersonalWord(const QString &word)
{
    {
        std::lock_guard lock(d->mutex);
        if (word.isEmpty() || d->personal.contains(word))
            return;
        d->personal.insert(word);
    }
    Q_EMIT PersonalWordAdded(word);
    Q_EMIT PersonalWordsChanged();
}

} // namespace oxa
