#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/richtext/SpellChecker.h"
#include "oxa/richtext/SpellChecker_p.h"
#include "oxa/richtext/SpellHighlighter_p.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QImage>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
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

struct Shown
{
    TestForm form;
    TOxaRichView *editor = nullptr;
    Shown()
    {
        form.resize(640, 420);
        editor = form.Add<TOxaRichView>(400);
        editor->resize(620, 400);
        form.Show(editor);
    }
};

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

// Red pixels of the painted editor: the wavy underline is the only red.
int RedPixels(TOxaRichView *e)
{
    const QImage image = e->viewport()->grab().toImage();
    int red = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            red += c.red() - std::max(c.green(), c.blue()) > 40; // antialiased red
        }
    }
    return red;
}

QString AllText(const TOxaRichView &e)
{
    return e.document()->toPlainText();
}

// The point in the viewport over the middle of the first occurrence of a word.
QPoint PointOfWord(TOxaRichView *e, const QString &word)
{
    const int at = AllText(*e).indexOf(word);
    QTextCursor c(e->document());
    c.setPosition(at + int(word.size()) / 2);
    return e->cursorRect(c).center();
}

QMenu *RightClickAt(TOxaRichView *e, const QPoint &viewportPos)
{
    QWidget *top = e->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {},
                      e->viewport()->mapTo(top, viewportPos));
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

QStringList Captions(const QMenu *menu)
{
    QStringList captions;
    for (const QAction *a : menu->actions())
        captions.append(a->isSeparator() ? QStringLiteral("-") : a->text());
    return captions;
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
    void charsetsConvertBothWays_data();
    void charsetsConvertBothWays();
    void setLineOfTheAffixFile_data();
    void setLineOfTheAffixFile();
    void latin2DictionaryIsCheckedInItsCharset();
    void missingDictionaryTurnsCheckingOff();
    void wordsThatAreNeverFlagged_data();
    void wordsThatAreNeverFlagged();
    void typedMistakesAreUnderlined_data();
    void typedMistakesAreUnderlined();
    void typingACorrectionRemovesTheUnderline();
    void wordsInTableCellsAreChecked();
    void propertyOffRemovesEveryUnderline();
    void underlinesNeverReachTheDocument();
    void typingChecksOnlyTheEditedParagraph();
    void longDocumentIsCheckedInTheBackground();
    void contextMenuOffersCorrections();
    void chosenCorrectionIsOneUndoStep();
    void addedWordIsKnownInEveryEditor();
};

void TestSpellChecker::init()
{
    SpellChecker::Shared()->SetPersonalWords({});
    SpellChecker::Shared()->EnsureLoaded();
}

void TestSpellChecker::charsetsConvertBothWays_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("encodable");

    const QString czech = QStringLiteral("Žluťoučký kůň úpěl");
    QTest::newRow("UTF-8") << QByteArray("UTF-8") << czech << czech.toUtf8() << true;
    QTest::newRow("ISO8859-2") << QByteArray("ISO8859-2") << czech
                               << QByteArray("\xAE"
                                             "lu\xBBou\xE8k\xFD k\xF9\xF2 \xFAp\xEC"
                                             "l")
                               << true;
    QTest::newRow("iso-8859-2 spelt otherwise")
        << QByteArray("iso-8859-2") << QStringLiteral("ř") << QByteArray("\xF8") << true;
    QTest::newRow("cp1250") << QByteArray("microsoft-cp1250") << QStringLiteral("Šťáva")
                            << QByteArray("\x8A\x9D\xE1va") << true;
    QTest::newRow("Latin-2 lacks the euro sign")
        << QByteArray("ISO8859-2") << QStringLiteral("5€") << QByteArray() << false;
    QTest::newRow("Latin-1 lacks ř")
        << QByteArray("ISO8859-1") << QStringLiteral("řez") << QByteArray() << false;
}

void TestSpellChecker::charsetsConvertBothWays()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, encodable);
    const DictionaryCharset set = DictionaryCharset::FromName(name);
    QVERIFY(set.IsValid());
    const auto encoded = set.Encode(text);
    QCOMPARE(encoded.has_value(), encodable);
    if (encodable) {
        QCOMPARE(*encoded, bytes);
        QCOMPARE(set.Decode(bytes), text);
    }
}

void TestSpellChecker::setLineOfTheAffixFile_data()
{
    QTest::addColumn<QByteArray>("affix");
    QTest::addColumn<QByteArray>("set");

    QTest::newRow("first line") << QByteArray("SET UTF-8\nTRY abc\n") << QByteArray("UTF-8");
    QTest::newRow("after comments")
        << QByteArray("# Czech\r\n\r\nSET ISO8859-2\r\nTRY x\r\n") << QByteArray("ISO8859-2");
    QTest::newRow("none: Hunspell's default")
        << QByteArray("TRY abc\nSFX A Y 1\n") << QByteArray("ISO8859-1");
    QTest::newRow("SETTINGS is no SET line")
        << QByteArray("SETTINGS x\n") << QByteArray("ISO8859-1");
}

void TestSpellChecker::setLineOfTheAffixFile()
{
    QFETCH(QByteArray, affix);
    QFETCH(QByteArray, set);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("x.aff")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(affix);
    file.close();
    QCOMPARE(DictionaryCharset::ReadSetLine(file.fileName()).value_or("?"), set);
    QVERIFY(!DictionaryCharset::ReadSetLine(dir.filePath(QStringLiteral("none.aff"))));
}

void TestSpellChecker::latin2DictionaryIsCheckedInItsCharset()
{
    // A dictionary of its own in ISO 8859-2: the words go to Hunspell in that
    // set and its suggestions come back from it.
    QTemporaryDir dir;
    QFile aff(dir.filePath(QStringLiteral("l2.aff")));
    QVERIFY(aff.open(QIODevice::WriteOnly));
    aff.write("SET ISO8859-2\nTRY \xBE\xBBl\xB9\xE8\xF8uo\xFA\xF9\xFDkn\xEC\n");
    aff.close();
    QFile dic(dir.filePath(QStringLiteral("l2.dic")));
    QVERIFY(dic.open(QIODevice::WriteOnly));
    dic.write("3\n\xBElu\xBBou\xE8k\xFD\nk\xF9\xF2\n\xFAp\xECl\n");
    dic.close();

    SpellChecker checker(aff.fileName());
    QVERIFY(checker.IsAvailable());
    QCOMPARE(checker.Encoding(), QStringLiteral("ISO8859-2"));
    QVERIFY(checker.IsCorrect(u"žluťoučký"));
    QVERIFY(checker.IsCorrect(u"kůň"));
    QVERIFY(!checker.IsCorrect(u"kun"));
    QVERIFY(!checker.IsCorrect(u"čaj€")); // not even in the charset
    QVERIFY(checker.Suggest(QStringLiteral("žlutoučký")).contains(QStringLiteral("žluťoučký")));
    const auto wrong = checker.Misspelled(u"Žluťoučký kun úpěl");
    QCOMPARE(wrong.size(), 1);
    QCOMPARE(wrong.first(), (SpellRange{10, 3}));
}

void TestSpellChecker::missingDictionaryTurnsCheckingOff()
{
    SpellChecker checker(QStringLiteral("/nonexistent/cs_XX.aff"));
    QVERIFY(!checker.IsAvailable());
    QVERIFY(!checker.EnsureLoaded());
    QVERIFY(checker.IsCorrect(u"pacinet"));
    QVERIFY(checker.Misspelled(u"pacinet bolesit").isEmpty());
    QVERIFY(checker.Suggest(QStringLiteral("pacinet")).isEmpty());

    // An editor on it stays without underlines and cannot be turned on.
    QTextDocument document;
    SpellHighlighter highlighter(&document, &checker, nullptr);
    QVERIFY(!highlighter.IsEnabled());
    highlighter.SetEnabled(true);
    QVERIFY(!highlighter.IsEnabled());
    QTextCursor(&document).insertText(QStringLiteral("pacinet bolesit"));
    QVERIFY(!highlighter.IsPending());
    QVERIFY(Underlined(&document).isEmpty());
}

void TestSpellChecker::wordsThatAreNeverFlagged_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("misspelt");

    QTest::newRow("short capitals") << QStringLiteral("EKG, CRP a CHOPN bez změn, XYZABQ ano.")
                                    << QStringList{QStringLiteral("XYZABQ")};
    QTest::newRow("dotted") << QStringLiteral("Dávkování p.o. a i.v. dle s.c. schématu.")
                            << QStringList{};
    QTest::newRow("short word before a dot, sentence goes on")
        << QStringLiteral("Užívá 1 tbl. denně, st.p. operaci, amp. 2x.") << QStringList{};
    QTest::newRow("a dot that ends the sentence")
        << QStringLiteral("Kontrola za týden pacinet. Pak bolesit.")
        << QStringList{QStringLiteral("pacinet"), QStringLiteral("bolesit")};
    QTest::newRow("digits") << QStringLiteral("HbA1c 6,5 %, B12 a 2x denně, 3krát.")
                            << QStringList{};
    QTest::newRow("units and internal capitals")
        << QStringLiteral("TK 120/80 mmHg, pH 7,4, SpO 98, 5 mg, 10 ml, gtt. a supp")
        << QStringList{};
    QTest::newRow("one letter") << QStringLiteral("Pravá q a x osa.") << QStringList{};
}

void TestSpellChecker::wordsThatAreNeverFlagged()
{
    REQUIRE_DICTIONARY();
    QFETCH(QString, text);
    QFETCH(QStringList, misspelt);
    QStringList found;
    for (const SpellRange &r : SpellChecker::Shared()->Misspelled(text))
        found.append(text.mid(r.Start, r.Length));
    QCOMPARE(found, misspelt);
}

void TestSpellChecker::typedMistakesAreUnderlined_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QStringList>("underlined");
    QTest::addColumn<QString>("correction"); // among the suggestions of the first

    QTest::newRow("two mistakes") << QStringLiteral("Pacient udává bolesit v pravem podžebří.")
                                  << QStringList{QStringLiteral("bolesit"),
                                                 QStringLiteral("pravem")}
                                  << QStringLiteral("bolesti");
    QTest::newRow("capital at the start")
        << QStringLiteral("Teplotta 38,5 °C, tlak 120/80 mmHg.")
        << QStringList{QStringLiteral("Teplotta")} << QStringLiteral("Teplota");
    QTest::newRow("swapped letters")
        << QStringLiteral("Kontrola za týden, pacinet poučen.")
        << QStringList{QStringLiteral("pacinet")} << QStringLiteral("pacient");
    QTest::newRow("correct report")
        << QStringLiteral("Užívá 1 tbl. denně p.o., EKG a CRP bez nálezu, stolice v normě.")
        << QStringList{} << QString();
}

void TestSpellChecker::typedMistakesAreUnderlined()
{
    REQUIRE_DICTIONARY();
    QFETCH(QString, sentence);
    QFETCH(QStringList, underlined);
    QFETCH(QString, correction);
    Shown s;
    Type(s.editor, sentence);
    QCOMPARE(AllText(*s.editor), sentence);
    // Checked while typing: nothing waits for the event loop.
    QCOMPARE(Underlined(s.editor->document()), underlined);
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
    Shown s;
    Type(s.editor, QStringLiteral("Pacinet "));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("Pacinet")});
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(s.editor, Qt::Key_Backspace);
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("Pacin")});
    QTest::keyClick(s.editor, Qt::Key_Backspace);
    Type(s.editor, QStringLiteral("ent přišel"));
    QCOMPARE(AllText(*s.editor), QStringLiteral("Pacient přišel"));
    QCOMPARE(Underlined(s.editor->document()), QStringList());
    // A new paragraph splits the block; both halves are checked.
    QTest::keyClick(s.editor, Qt::Key_Home);
    Type(s.editor, QStringLiteral("zhorseni"));
    QTest::keyClick(s.editor, Qt::Key_Return);
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("zhorseni")});
}

void TestSpellChecker::wordsInTableCellsAreChecked()
{
    REQUIRE_DICTIONARY();
    Shown s;
    QVERIFY(s.editor->InsTable({2, 2, 0, clBlack, 1}));
    QTextTable *table = s.editor->CurrentTable();
    QVERIFY(table);
    s.editor->setTextCursor(table->cellAt(1, 1).firstCursorPosition());
    Type(s.editor, QStringLiteral("hodnotta v normě"));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("hodnotta")});
    QVERIFY(s.editor->CurrentTable() == table);
}

void TestSpellChecker::propertyOffRemovesEveryUnderline()
{
    REQUIRE_DICTIONARY();
    Shown s;
    QVERIFY(s.editor->SpellCheckAvailable());
    QVERIFY(s.editor->SpellCheck());
    QSignalSpy changed(s.editor, &TOxaRichView::spellCheckChanged);
    SetFormatedText(s.editor, LongReport(3));
    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("pacinet")});
    QVERIFY(RedPixels(s.editor) > 10);

    s.editor->setProperty("SpellCheck", false);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(Underlined(s.editor->document()), QStringList());
    QCOMPARE(RedPixels(s.editor), 0);
    Type(s.editor, QStringLiteral(" bolesit"));
    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(Underlined(s.editor->document()), QStringList());
    s.editor->SetSpellCheck(false);
    QCOMPARE(changed.count(), 1);

    s.editor->SetSpellCheck(true);
    QCOMPARE(changed.count(), 2);
    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(Underlined(s.editor->document()),
             (QStringList{QStringLiteral("pacinet"), QStringLiteral("bolesit")}));
}

void TestSpellChecker::underlinesNeverReachTheDocument()
{
    REQUIRE_DICTIONARY();
    Shown s;
    TOxaRichView *e = s.editor;
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
        QVERIFY(!e->document()->isUndoAvailable());
        QVERIFY(!e->document()->isModified());
        QCOMPARE(contents.count(), 0);
        QCOMPARE(undoAdded.count(), 0);
        // No character of the document carries the underline.
        for (QTextBlock b = e->document()->begin(); b.isValid(); b = b.next()) {
            for (auto f = b.begin(); !f.atEnd(); ++f)
                QVERIFY(f.fragment().charFormat().underlineStyle() !=
                        QTextCharFormat::SpellCheckUnderline);
        }
    };
    QVERIFY(WaitChecked(e));
    QCOMPARE(Underlined(e->document()).size(), 3);
    unchanged();
    SpellChecker::Shared()->SetPersonalWords({QStringLiteral("pacinet")});
    QVERIFY(WaitChecked(e));
    QCOMPARE(Underlined(e->document()).size(), 2);
    unchanged();
    e->SetSpellCheck(false);
    QVERIFY(Underlined(e->document()).isEmpty());
    unchanged();
}

void TestSpellChecker::typingChecksOnlyTheEditedParagraph()
{
    REQUIRE_DICTIONARY();
    Shown s;
    SetFormatedText(s.editor, LongReport(400));
    QVERIFY(WaitChecked(s.editor));
    SpellHighlighter *h = Highlighter(s.editor);
    h->ResetStatistics();
    QTextCursor c(s.editor->document()->findBlockByNumber(200));
    c.movePosition(QTextCursor::EndOfBlock);
    s.editor->setTextCursor(c);
    Type(s.editor, QStringLiteral(" bolesit"));
    QCOMPARE(h->Statistics().BlocksChecked, 8); // one per key
    QVERIFY(!h->IsPending());
    QTest::keyClick(s.editor, Qt::Key_Return);
    QCOMPARE(h->Statistics().BlocksChecked, 10); // both halves
    QCOMPARE(Underlined(s.editor->document()),
             (QStringList{QStringLiteral("bolesit"), QStringLiteral("pacinet")}));
}

void TestSpellChecker::longDocumentIsCheckedInTheBackground()
{
    REQUIRE_DICTIONARY();
    Shown s;
    TOxaRichView source;
    SetFormatedText(&source, LongReport(3000));
    const QByteArray stream = source.SaveOxaRVFToString();

    SpellHighlighter *h = Highlighter(s.editor);
    h->SetSliceBudgetNs(0); // one paragraph per slice
    s.editor->LoadOxaRVFFromString(stream);
    h->ResetStatistics();
    // Loading returned before the check: it is queued for the event loop.
    QVERIFY(h->IsPending());
    QCOMPARE(Underlined(s.editor->document()), QStringList());
    QApplication::processEvents();
    QVERIFY(h->IsPending());
    // The user types at the start meanwhile, and is served at once.
    Type(s.editor, QStringLiteral("Zpráva: bolesit "));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("bolesit")});
    QVERIFY(h->IsPending());

    QSignalSpy idle(h, &SpellHighlighter::Idle);
    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(idle.count(), 1);
    QCOMPARE(Underlined(s.editor->document()),
             (QStringList{QStringLiteral("bolesit"), QStringLiteral("pacinet")}));
    // Each paragraph once, in a slice of its own, besides the typed ones.
    const auto &stats = h->Statistics();
    QCOMPARE(stats.BlocksChecked - stats.Immediate, stats.Slices);
    QVERIFY(stats.Slices >= s.editor->document()->blockCount() - 1);
    QVERIFY(stats.Slices <= s.editor->document()->blockCount() + 1);
}

void TestSpellChecker::contextMenuOffersCorrections()
{
    REQUIRE_DICTIONARY();
    Shown s;
    Type(s.editor, QStringLiteral("Pacient udává bolesit v podžebří."));
    QSignalSpy popup(s.editor, &TOxaRichView::OnPopup);
    QMenu *menu = RightClickAt(s.editor, PointOfWord(s.editor, QStringLiteral("bolesit")));
    QVERIFY(menu);
    QCOMPARE(popup.count(), 1);
    const QStringList captions = Captions(menu);
    const int add = int(captions.indexOf(QStringLiteral("Přidat do slovníku")));
    QVERIFY2(add >= 2 && add <= 5, qPrintable(captions.join(u'|')));
    QVERIFY(captions.mid(0, add).contains(QStringLiteral("bolesti")));
    QCOMPARE(captions.value(add + 1), QStringLiteral("-"));
    QVERIFY(captions.size() > add + 3); // the standard items follow
    QTest::mouseClick(
        menu, Qt::LeftButton, {},
        menu->actionGeometry(menu->actions().at(int(captions.indexOf(QStringLiteral("bolesti")))))
            .center());
    QCOMPARE(AllText(*s.editor), QStringLiteral("Pacient udává bolesti v podžebří."));
    QCOMPARE(Underlined(s.editor->document()), QStringList());

    // A correct word gets the standard menu only; so does an editor with checking off.
    menu = RightClickAt(s.editor, PointOfWord(s.editor, QStringLiteral("udává")));
    QVERIFY(menu);
    QVERIFY(!Captions(menu).contains(QStringLiteral("Přidat do slovníku")));
    menu->close();
    QMenu host;
    host.addAction(QStringLiteral("Vložit"));
    Type(s.editor, QStringLiteral(" pacinet"));
    const QPoint wrong = PointOfWord(s.editor, QStringLiteral("pacinet"));
    s.editor->SetSpellCheck(false);
    QCOMPARE(s.editor->AddSpellingActions(&host, wrong), 0);
    s.editor->SetSpellCheck(true);
    QVERIFY(WaitChecked(s.editor));
    // A host's own menu gets the same actions on top of its items.
    const int added = s.editor->AddSpellingActions(&host, wrong);
    QVERIFY(added >= 2 && added <= 6);
    QCOMPARE(Captions(&host).value(added - 1), QStringLiteral("Přidat do slovníku"));
    QCOMPARE(Captions(&host).mid(added),
             (QStringList{QStringLiteral("-"), QStringLiteral("Vložit")}));
}

void TestSpellChecker::chosenCorrectionIsOneUndoStep()
{
    REQUIRE_DICTIONARY();
    Shown s;
    Type(s.editor, QStringLiteral("Stav po "));
    s.editor->SetFontStyle(afsBold);
    Type(s.editor, QStringLiteral("opraci"));
    s.editor->SetFontStyle(afsUnBold);
    Type(s.editor, QStringLiteral(" kyčle."));
    const int typedSteps = s.editor->document()->availableUndoSteps();
    QMenu menu;
    QVERIFY(s.editor->AddSpellingActions(&menu, PointOfWord(s.editor, QStringLiteral("opraci"))) >
            1);
    QAction *operace = nullptr;
    for (QAction *a : menu.actions()) {
        if (a->text() == QStringLiteral("operaci"))
            operace = a;
    }
    QVERIFY2(operace, qPrintable(Captions(&menu).join(u'|')));
    operace->trigger();
    QCOMPARE(AllText(*s.editor), QStringLiteral("Stav po operaci kyčle."));
    QCOMPARE(GetFormatedText(s.editor, 0, 1, s.editor->ItemCount() - 1, 100),
             QStringLiteral("Stav po <b>operaci</b> kyčle."));
    QCOMPARE(s.editor->UndoAction(), int(utTyping));
    QVERIFY(s.editor->document()->availableUndoSteps() > typedSteps);
    QTest::keyClick(s.editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(AllText(*s.editor), QStringLiteral("Stav po opraci kyčle."));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("opraci")});
    s.editor->Redo(); // from the host: checked in the background
    QCOMPARE(AllText(*s.editor), QStringLiteral("Stav po operaci kyčle."));
    QVERIFY(WaitChecked(s.editor));
    QCOMPARE(Underlined(s.editor->document()), QStringList());
}

void TestSpellChecker::addedWordIsKnownInEveryEditor()
{
    REQUIRE_DICTIONARY();
    Shown s;
    TOxaRichView other;
    SetFormatedText(&other, QStringLiteral("Stav eupnoe, afebrilní."));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(other.document()).size(), 2);
    Type(s.editor, QStringLiteral("Pacient eupnoe."));
    QSignalSpy added(s.editor, &TOxaRichView::personalWordAdded);
    QSignalSpy shared(SpellChecker::Shared(), &SpellChecker::PersonalWordAdded);
    QMenu *menu = RightClickAt(s.editor, PointOfWord(s.editor, QStringLiteral("eupnoe")));
    QVERIFY(menu);
    const QStringList captions = Captions(menu);
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().at(int(captions.indexOf(
                                               QStringLiteral("Přidat do slovníku")))))
                          .center());
    QCOMPARE(added.count(), 1);
    QCOMPARE(added.first().first().toString(), QStringLiteral("eupnoe"));
    QCOMPARE(shared.count(), 1);
    QCOMPARE(s.editor->PersonalWords(), QStringList{QStringLiteral("eupnoe")});
    QVERIFY(WaitChecked(s.editor));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(s.editor->document()), QStringList());
    QCOMPARE(Underlined(other.document()), QStringList{QStringLiteral("afebrilní")});

    // The host restores its stored list; a word no longer in it is flagged again.
    other.SetPersonalWords({QStringLiteral("afebrilní")});
    QVERIFY(WaitChecked(s.editor));
    QVERIFY(WaitChecked(&other));
    QCOMPARE(Underlined(s.editor->document()), QStringList{QStringLiteral("eupnoe")});
    QCOMPARE(Underlined(other.document()), QStringList{QStringLiteral("eupnoe")});
}

QTEST_MAIN(TestSpellChecker)
#include "tst_spellchecker.moc"
