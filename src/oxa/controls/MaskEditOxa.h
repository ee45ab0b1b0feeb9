#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/FocusNavigation.h"

#include <QLineEdit>
#include <QString>

namespace oxa {

// The masked edit of the data-entry forms: a QLineEdit with an input mask,
// the focus neighbours and focus colours of the edits, and, when
// IsDateFormat is true, date handling from the keyboard:
//   keypad *            today's date;
//   keypad + / Up       one day, month or year later, by where the caret
//   keypad - / Down     stands (0-1 day, 2-4 month, 5 and on year);
//   "*", "+", "-"       never typed into the mask;
// and leaving the edit with a text that is no date keeps the focus in it and
// shows the parser's error. An untouched mask counts as no date and may be
// left. A read-only edit ignores the date keys.
//
// EditMask takes the toolkit's mask syntax ("!99/99/0000;1;_": 0 a required
// digit, 9 an optional one, "/" the date separator, the blank character
// after the last ";") and sets the equivalent Qt input mask; a Qt mask may
// still be given directly through QLineEdit::setInputMask. Turning
// IsDateFormat on in an edit without a mask gives it DefaultDateMask().
class OXA_EXPORT TMaskEditOxa : public TFocusColorNavigation<TMaskEditOxa, QLineEdit>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(bool IsDateFormat READ IsDateFormat WRITE SetIsDateFormat NOTIFY isDateFormatChanged)
    Q_PROPERTY(QString EditMask READ EditMask WRITE SetEditMask NOTIFY editMaskChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

    using Base = TFocusColorNavigation<TMaskEditOxa, QLineEdit>;

public:
    explicit TMaskEditOxa(QWidget *owner = nullptr);

    bool IsDateFormat() const { return FDateFormat; }
    void SetIsDateFormat(bool value);

    QString EditMask() const { return FEditMask; }
    void SetEditMask(const QString &mask);

    // The toolkit's mask of a day.month.year date.
    static QString DefaultDateMask();
    // The Qt input mask equivalent to a mask in the toolkit's syntax.
    static QString ToQtInputMask(const QString &editMask);

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void isDateFormatChanged();
    void editMaskChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

protected:
    void KeyDown(Word &Key, TShiftState Shift) override;
    void KeyPress(QChar &Key) override;
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    int FirstBlankPosition() const;
    void DateKeyDown(Word &Key);
    void StepDate(Word &Key);
    bool IsEmptyDate() const;
    void CheckDateOnExit();
    void FinishExit();

    bool FDateFormat = false;
    QString FEditMask;
};

OXA_EXPORT void RegisterMaskEditOxa();

} // namespace oxa
