#pragma once

#include "oxa/oxa_export.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <memory>

namespace oxa {

// One misspelt word of a paragraph: its start and length in UTF-16 units.
struct SpellRange
{
    int Start = 0;
    int Length = 0;
    friend bool operator==(const SpellRange &, const SpellRange &) = default;
};

// A Hunspell dictionary with the user's personal word list.
//
// Shared() is the process's Czech dictionary, which every editor uses: it is
// opened on first use and read on a thread of its own (reading it takes a
// good part of a second), so no editor waits for it; IsReady tells when it
// is read and Loaded is signalled then. A dictionary whose files are missing
// or unreadable leaves the checker unavailable: every word counts as correct
// and the editors do not underline anything.
//
// The personal word list belongs to the checker, so with the shared checker
// it is one list per process: a word the user adds in one report is known in
// every editor. The host reads and stores it (PersonalWords, PersonalWordAdded)
// and hands it back at start (SetPersonalWords).
//
// The words of the dictionary are in its own character set, named by the SET
// line of its affix file; text is converted to it and back here.
class OXA_EXPORT SpellChecker : public QObject
{
    Q_OBJECT

public:
    // A checker of the dictionary whose affix file is affixPath; the word
    // file lies beside it with the extension .dic.
    explicit SpellChecker(const QString &affixPath, QObject *parent = nullptr);
    ~SpellChecker() override;

    // The Czech dictionary that the system installs.
    static QString DefaultAffixPath();
    // The process's shared checker of the default dictionary.
    static SpellChecker *Shared();

    // Whether the dictionary's files exist and its character set is known.
    bool IsAvailable() const;
    // Whether the dictionary is read (starting the reading if it is not).
    bool IsReady();
    // Reads the dictionary now if it is not read yet; returns IsAvailable.
    bool EnsureLoaded();
    // The character set named by the affix file (ISO8859-1 when it names none).
    QString Encoding() const;

    // Whether a word is in the dictionary or in the personal word list;
    // true when the dictionary is unavailable. Reads the dictionary if needed.
    bool IsCorrect(QStringView word);
    // Up to max corrections of a word, best first.
    QStringList Suggest(const QString &word, int max = 5);
    // The misspelt words of a paragraph. Words with digits, abbreviations
    // (see IsAbbreviation) and one-letter words are never misspelt.
    QList<SpellRange> Misspelled(QStringView text);
    // Whether the word at [start, start + length) of text is written as an
    // abbreviation rather than a word: dotted (p.o.), short capitals (EKG),
    // a short word before a dot that the sentence goes on after (tbl. denně),
    // internal capitals (mmHg) or one of the units and dosage forms that
    // reports write in lower case without a dot (mg, ml, amp).
    static bool IsAbbreviation(QStringView text, int start, int length);

    QStringList PersonalWords() const;
    void SetPersonalWords(const QStringList &words);
    // Adds a word to the personal word list and signals PersonalWordAdded.
    void AddPersonalWord(const QString &word);

Q_SIGNALS:
    void Loaded();
    void PersonalWordsChanged();
    void PersonalWordAdded(const QString &word);

private:
    class Private;
    std::unique_ptr<Private> const d;
};

} // namespace oxa
