#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/richtext/SpellChecker.h"
#include "oxa/richtext/SpellChecker_p.h"
#include "oxa/richtext/SpellHighlighter_p.h"
#include "richtext/RichTestSupport.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>

using namespace oxa;
using namespace oxa::test;

// The Czech dictionary is a package of the test machine; elsewhere the tests
// that need it are skipped, unless the run demands it.
#define REQUIRE_DICTIONARY() \
    OXA_REQUIRE_OR_SKIP(SpellChecker::Shared()->IsAvailable(), "OXA_REQUIRE_DICTIONARY", \
                        QStringLiteral("The Czech dictionary (hunspell-cs) is not installed"))

namespace {

const QString kAddWord = QStringLiteral("Přidat do slovníku");

SpellHighlighter *Highlighter(const TOxaRichView *e)
{
    return e->findChild<SpellHighlighter *>();
}

bool WaitChecked(const TOxaRichView *e)
{
    return WaitFor([e] { return !Highlighter(e)->IsPending(); });
}

// The underlined words of the whole document, read from the blocks' layouts.
QStringList Underlined(const QTextDocument *document)
{
    QStringList words;
    for (QTextBlock b = document->begin(); b.isValid(); b = b.next()) {
        for (const auto &f : b.layout()->formats()) {
            if (f.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline)
                words.append(b.text().mid(f.start, f.length));
        }
    }
    return words;
}

QStringList Underlined(const TOxaRichView *e)
{
    return Underlined(e->document());
}

// Types text with real keys: a letter key for ASCII, and for a Czech letter
// the key a Czech keyboard sends (Qt names it by the capital letter's code).
void Type(QWidget *w, const QString &text)
{
    for (QChar c : text) {
        if (c.unicode() < 0x80) {
            QTest::keyClick(w, c.toLatin1());
        } else {
            const auto key = Qt::Key(c.toUpper().unicode());
            QTest::sendKeyEvent(QTest::Press, w, key, QString(c), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, w, key, QString(c), Qt::NoModifier);
        }
    }
}

QString AllText(const TOxaRichView *e)
{
    return e->document()->toPlainText();
}

// A report of paragraphs in tagged text, a misspelt word in the last one.
QString LongReport(int paragraphs)
{
    QString text;
    for (int i = 0; i < paragraphs; ++i)
        text +=
            QStringLiteral("Pacient %1 udává <b>bolesti</b> v pravém podžebří, bez teploty.\r\n")
                .arg(i);
    return text + QStringLiteral("Kontrola za týden, pacinet poučen.");
}

} // namespace

class TestSpellChecker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void latin2DictionaryIsCheckedInItsCharset();
    void missingDictionaryTurnsCheckingOff();
    void typedMistakesAreUnderlined_data();
    void typedMistakesAreUnderlined();
    void typingACorrectionRemovesTheUnderline();
    void underlinesArePaintedOnly();
    void longDocumentIsCheckedInTheBackground();
    void contextMenuOffersCorrections();
    void addedWordIsKnownInEveryEditor();
};

void TestSpellChecker::init()
{
    SpellChecker::Shared()->SetPersonalWords({});
    SpellChecker::Shared()->EnsureLoaded();
}

void TestSpellChecker::latin2DictionaryIsCheckedInItsCharset()
{
    // A dictionary of its own in ISO 8859-2: the words go to Hunspell in that
    // set and its suggestions come back from it.
    QTemporaryDir dir;
    const QList<QPair<QString, QByteArray>> files = {
        {"l2.aff", "SET ISO8859-2\nTRY \xBE\xBBl\xB9\xE8\xF8uo\xFA\xF9\xFDkn\xEC\n"},
        {"l2.dic", "3\n\xBElu\xBBou\xE8k\xFD\nk\xF9\xF2\n\xFAp\xECl\n"}};
    for (const auto &[name, bytes] : files) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    SpellChecker checker(dir.filePath(QStringLiteral("l2.aff")));
    QVERIFY(checker.IsAvailable());
    QVERIFY(!checker.IsCorrect(u"čaj€")); // not even in the charset
    QVERIFY(checker.Suggest(QStringLiteral("žlutoučký")).contains(QStringLiteral("žluťoučký")));
    QCOMPARE(checker.Misspelled(u"Žluťoučký kun úpěl"), QList<SpellRange>{(SpellRange{10, 3})});
}

void TestSpellChecker::missingDictionaryTurnsCheckingOff()
{
    SpellChecker checker(QStringLiteral("/nonexistent/cs_XX.aff"));
    QVERIFY(!checker.IsAvailable());
    QVERIFY(checker.IsCorrect(u"pacinet"));
    QVERIFY(checker.Misspelled(u"pacinet bolesit").isEmpty());

    // An editor on it stays without underlines and cannot be turned on.
    QTextDocument document;
    SpellHighlighter highlighter(&document, &checker, nullptr);
    highlighter.SetEnabled(true);
    QVERIFY(!highlighter.IsEnabled());
    QTextCursor(&document).insertText(QStringLiteral("pacinet bolesit"));
    QVERIFY(!highlighter.IsPending());
    QVERIFY(Underlined(&document).isEmpty());
}

void TestSpellChecker::typedMistakesAreUnderlined_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QStringList>("underlined");
    QTest::addColumn<QString>("correction"); // among the suggestions of the first
    QTest::addColumn<bool>("inTable");
    const auto row = [](const char *name, const char *sentence, const QStringList &underlined,
                        const char *correction = "", bool inTable = false) {
        QTest::newRow(name) << QString::fromUtf8(sentence) << underlined
                            << QString::fromUtf8(correction) << inTable;
    };
    row("two mistakes", "Pacient udává bolesit v pravem podžebří.", {"bolesit", "pravem"},
        "bolesti");
    row("table cell", "hodnotta v normě", {"hodnotta"}, "", true);
    row("the word at the caret is still being typed", "Pacient udává bolesit", {});
    // Words that are never flagged.
    row("short capitals", "EKG, CRP a CHOPN bez změn, XYZABQ ano.", {"XYZABQ"});
    row("dotted", "Dávkování p.o. a i.v. dle s.c. schématu.", {});
    row("short word before a dot, sentence goes on", "Užívá 1 tbl. denně, st.p. operaci, amp. 2x.",
        {});
    row("a dot that ends the sentence", "Kontrola za týden pacinet. Pak bolesit.",
        {"pacinet", "bolesit"});
    row("digits", "HbA1c 6,5 %, B12 a 2x denně, 3krát.", {});
    row("units and internal capitals", "TK 120/80 mmHg, pH 7,4, SpO 98, 5 mg, 10 ml, gtt. a supp",
        {});
    row("one letter", "Pravá q a x osa.", {});
}

void TestSpellChecker::typedMistakesAreUnderlined()
{
    REQUIRE_DICTIONARY();
    QFETCH(QString, sentence);
    QFETCH(QStringList, underlined);
    QFETCH(QString, correction);
    QFETCH(bool, inTable);
    EditorWindow s(620, 400);
    if (inTable) {
        QVERIFY(s.editor->InsTable({2, 2, 0, clBlack, 1}));
        QVERIFY(WaitChecked(s.editor));
        s.editor->setTextCursor(s.editor->CurrentTable()->cellAt(1, 1).firstCursorPosition());
    }
    Type(s.editor, sentence);
    QVERIFY(AllText(s.editor).contains(sentence));
    // Checked while typing: nothing waits for the event loop.
    QCOMPARE(Underlined(s.editor), underlined);
    QVERIFY(!Highlighter(s.editor)->IsPending());
    if (!correction.isEmpty()) {
        const QStringList suggestions = SpellChecker::Shared()->Suggest(underlined.first());
        QVERIFY2(suggestions.contains(correction), qPrintable(suggestions.join(u',')));
        QVERIFY(suggestions.size() <= 5);
    }
}

void TestSpellChecker::typingACorrectionRemovesTheUnderline()
{
    REQUIRE_DICTIONARY();
    EditorWindow s(620, 400);
    Type(s.editor, QStringLiteral("Pacinet "));
    QCOMPARE(Underlined(s.editor), QStringList{"Pacinet"});
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(s.editor, Qt::Key_Backspace);
    // The word being edited waits until the caret leaves it.
    QCOMPARE(Underlined(s.editor), QStringList());
    QTest::keyClick(s.editor, Qt::Key_Home);
    QCOMPARE(Underlined(s.editor), QStringList{"Pacin"});
    QTest::keyClick(s.editor, Qt::Key_End);
    QTest::keyClick(s.editor, Qt::Key_Backspace);
    Type(s.editor, QStringLiteral("ent přišel"));
    QCOMPARE(AllText(s.editor), QStringLiteral("Pacient přišel"));
    QCOMPARE(Underlined(s.editor), QStringList());
}

// The underline is painted, never stored: the document, its stream, tagged
// text and undo stay as they were, whatever the checking does.
void TestSpellChecker::underlinesArePaintedOnly()
{
    REQUIRE_DICTIONARY();
    EditorWindow s(620, 400);
    TOxaRichView *e = s.editor;
    QVERIFY(e->SpellCheckAvailable());
    QVERIFY(e->SpellCheck());
    SetFormatedText(e, QStringLiteral("Pacinet <b>udává</b> bolesit.\r\nTeplotta 38 °C."));
    e->RVData()->ClearUndo();
    e->document()->setModified(false);
    const QByteArray before = e->SaveOxaRVFToString();
    const QString tagged = GetFormatedText(e, 0, 1, e->ItemCount() - 1, 100);
    QSignalSpy contents(e->document(), &QTextDocument::contentsChanged);
    QSignalSpy undoAdded(e->document(), &QTextDocument::undoCommandAdded);
    auto unchanged = [&] {
        QCOMPARE(e->SaveOxaRVFToString(), before);
        QCOMPARE(GetFormatedText(e, 0, 1, e->ItemCount() - 1, 100), tagged);
        QCOMPARE(e->UndoAction(), int(utNone));
        QVERIFY(!e->document()->isModified());
        QCOMPARE(contents.count() + undoAdded.count(), 0);
        for (QTextBlock b = e->document()->begin(); b.isValid(); b = b.next()) {
            for (auto f = b.begin(); !f.atEnd(); ++f)
                QVERIFY(f.fragment().charFormat().underlineStyle() !=
                        QTextCharFormat::SpellCheckUnderline);
        }
    };
    QVERIFY(WaitChecked(e));
    QCOMPARE(Underlined(e), (QStringList{"Pacinet", "bolesit", "Teplotta"}));
    unchanged();

    e->SetSpellCheck(false);
    QCOMPARE(Underlined(e), QStringList());
    unchanged();

    e->SetSpellCheck(true);
    QVERIFY(WaitChecked(e));
    QCOMPARE(Underlined(e), (QStringList{"Pacinet", "bolesit", "Teplotta"}));
}

void TestSpellChecker::longDocumentIsCheckedInTheBackground()
{
    REQUIRE_DICTIONARY();
    EditorWindow s(620, 400);
    TOxaRichView source;
    SetFormatedText(&source, LongReport(3000));
    SpellHighlighter *h = Highlighter(s.editor);
    h->SetSliceBudgetNs(0); // one paragraph per slice
    s.editor->LoadOxaRVFFromString(source.SaveOxaRVFToString());
    // Loading returned before the check: it is queued for the event loop.
    QVERIFY(h->IsPending());
    QCOMPARE(Underlined(s.editor), QStringList());
    // The user types at the start meanwhile, and is served at once.
    Type(s.editor, QStringLiteral("Zpráva: bolesit "));
    QCOMPARE(Underlined(s.editor), QStringList{"bolesit"});
    QVERIFY(h->IsPending());

    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(Underlined(s.editor), (QStringList{"bolesit", "pacinet"}));

    // Typing later checks the edited paragraph alone, once per key.
    h->ResetStatistics();
    QTextCursor c(s.editor->document()->findBlockByNumber(200));
    c.movePosition(QTextCursor::EndOfBlock);
    s.editor->setTextCursor(c);
    Type(s.editor, QStringLiteral(" bolesit"));
    QCOMPARE(h->Statistics().BlocksChecked, 8);
    QVERIFY(!h->IsPending());
    QTest::keyClick(s.editor, Qt::Key_Return);
    QCOMPARE(Underlined(s.editor), (QStringList{"bolesit", "bolesit", "pacinet"}));
}

void TestSpellChecker::contextMenuOffersCorrections()
{
    REQUIRE_DICTIONARY();
    EditorWindow s(620, 400);
    Type(s.editor, QStringLiteral("Pacient udává "));
    s.editor->SetFontStyle(afsBold);
    Type(s.editor, QStringLiteral("bolesit"));
    s.editor->SetFontStyle(afsUnBold);
    Type(s.editor, QStringLiteral(" v podžebří."));
    QMenu *menu = RightClickOn(s.editor, QStringLiteral("bolesit"));
    QVERIFY(menu);
    const QStringList captions = Captions(menu);
    const int add = int(captions.indexOf(kAddWord));
    QVERIFY2(add >= 2 && add <= 5, qPrintable(captions.join(u'|')));
    QVERIFY(captions.mid(0, add).contains(QStringLiteral("bolesti")));
    // The correction keeps the word's format and is one undo step.
    QVERIFY(ClickItem(menu, QStringLiteral("bolesti")));
    QCOMPARE(GetFormatedText(s.editor, 0, 1, s.editor->ItemCount() - 1, 100),
             QStringLiteral("Pacient udává <b>bolesti</b> v podžebří."));
    QCOMPARE(Underlined(s.editor), QStringList());
    QCOMPARE(s.editor->UndoAction(), int(utTyping));
    QTest::keyClick(s.editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(AllText(s.editor), QStringLiteral("Pacient udává bolesit v podžebří."));
    QCOMPARE(Underlined(s.editor), QStringList{"bolesit"});

    // With checking off a misspelt word gets no corrections.
    Type(s.editor, QStringLiteral(" pacinet"));
    QMenu host;
    s.editor->SetSpellCheck(false);
    QCOMPARE(s.editor->AddSpellingActions(&host, PointOfWord(s.editor, QStringLiteral("pacinet"))),
             0);
}

void TestSpellChecker::addedWordIsKnownInEveryEditor()
{
    REQUIRE_DICTIONARY();
    EditorWindow s(620, 400);
    TOxaRichView other;
    SetFormatedText(&other, QStringLiteral("Stav eupnoe, afebrilní."));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(&other).size(), 2);
    Type(s.editor, QStringLiteral("Pacient eupnoe."));
    QSignalSpy added(s.editor, &TOxaRichView::personalWordAdded);
    QVERIFY(ClickItem(RightClickOn(s.editor, QStringLiteral("eupnoe")), kAddWord));
    QCOMPARE(added.count(), 1);
    QCOMPARE(added.first().first().toString(), QStringLiteral("eupnoe"));
    QCOMPARE(s.editor->PersonalWords(), QStringList{"eupnoe"});
    QVERIFY(WaitChecked(s.editor));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(s.editor), QStringList());
    QCOMPARE(Underlined(&other), QStringList{"afebrilní"});

    // The host restores its stored list; a word no longer in it is flagged again.
    other.SetPersonalWords({QStringLiteral("afebrilní")});
    QVERIFY(WaitChecked(s.editor));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(s.editor), QStringList{"eupnoe"});
    QCOMPARE(Underlined(&other), QStringList{"eupnoe"});
}

QTEST_MAIN(TestSpellChecker)
#include "tst_spellchecker.moc"
