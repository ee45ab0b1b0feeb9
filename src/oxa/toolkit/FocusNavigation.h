#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/WinControl.h"

namespace oxa {

// Indices of the neighbour properties, as SetFoc receives them.
enum TFocusDirection { fdUp = 1, fdDown = 2, fdLeft = 3, fdRight = 4 };

// The arrow key that moves the focus in a direction, and the reverse.
OXA_EXPORT bool FocusDirectionOfKey(Word key, TFocusDirection &direction);

// The focus navigation shared by the data-entry controls: four weak
// neighbour references (FocUp, FocDown, FocLeft, FocRight) and Ctrl+arrow
// moving the focus to them, skipping disabled neighbours along the chain.
//
// Family is the class whose instances the chain may pass through (the class
// that declares the navigation, e.g. TEditOxa: a derived TNumEditOxa is
// followed further, any other control ends the chain).
template<class Family, class QtBase>
class TFocusNavigation : public WinControlOf<QtBase>::type
{
    using Base = typename WinControlOf<QtBase>::type;

public:
    using Base::Base;

    QWidget *FocUp() const { return m_foc[fdUp - 1]; }
    QWidget *FocDown() const { return m_foc[fdDown - 1]; }
    QWidget *FocLeft() const { return m_foc[fdLeft - 1]; }
    QWidget *FocRight() const { return m_foc[fdRight - 1]; }
    QWidget *Foc(TFocusDirection direction) const { return m_foc[direction - 1]; }

    void SetFocUp(QWidget *control) { SetFoc(fdUp, control); }
    void SetFocDown(QWidget *control) { SetFoc(fdDown, control); }
    void SetFocLeft(QWidget *control) { SetFoc(fdLeft, control); }
    void SetFocRight(QWidget *control) { SetFoc(fdRight, control); }

    // Stores the neighbour of the index (1 Up, 2 Down, 3 Left, 4 Right; any
    // other index stores nothing) and asks the control to notify this one
    // when it is destroyed.
    void SetFoc(int index, QWidget *control)
    {
        if (index >= fdUp && index <= fdRight && m_foc[index - 1] != control) {
            m_foc[index - 1] = control;
            NotifyFocChanged(TFocusDirection(index));
        }
        if (control)
            this->FreeNotification(control);
    }

    void SetFocusUp(QWidget *control, int depth) { MoveFocus(fdUp, control, depth); }
    void SetFocusDown(QWidget *control, int depth) { MoveFocus(fdDown, control, depth); }
    void SetFocusLeft(QWidget *control, int depth) { MoveFocus(fdLeft, control, depth); }
    void SetFocusRight(QWidget *control, int depth) { MoveFocus(fdRight, control, depth); }

protected:
    void KeyDown(Word &key, TShiftState shift) override
    {
        HandleFocusKey(key, shift);
        Base::KeyDown(key, shift);
    }

    // Ctrl+arrow with a neighbour set: the key is consumed and the focus
    // moves. Returns whether the key was consumed.
    bool HandleFocusKey(Word &key, TShiftState shift)
    {
        TFocusDirection direction;
        if (!FocusDirectionOfKey(key, direction) || !Foc(direction))
            return false;
        if (shift != TShiftState(ssCtrl))
            return false;
        key = 0;
        MoveFocus(direction, Foc(direction), 0);
        return true;
    }

    // One step of the move: the control itself when it is enabled, else its
    // own neighbour in the same direction when it belongs to the family; at
    // most four controls are tried.
    void MoveFocus(TFocusDirection direction, QWidget *control, int depth)
    {
        ++depth;
        if (depth >= 5 || !Foc(direction) || !control)
            return;
        if (ControlEnabled(control)) {
            SetFocusTo(control);
            return;
        }
        auto *member = dynamic_cast<Family *>(control);
        if (member && member->Foc(direction))
            MoveFocus(direction, member->Foc(direction), depth);
    }

    void Notification(QObject *component, TOperation operation) override
    {
        Base::Notification(component, operation);
        if (operation != opRemove)
            return;
        for (int d = fdUp; d <= fdRight; ++d) {
            if (m_foc[d - 1] == component) {
                m_foc[d - 1] = nullptr;
                NotifyFocChanged(TFocusDirection(d));
            }
        }
    }

private:
    void NotifyFocChanged(TFocusDirection direction)
    {
        static const char *const names[] = {"FocUp", "FocDown", "FocLeft", "FocRight"};
        NotifyPropertyChanged(this, names[direction - 1]);
    }

    QWidget *m_foc[4] = {nullptr, nullptr, nullptr, nullptr};
};

// The focus colours most members carry on top of the navigation: the
// control's background is ActiveColor while it holds the focus and
// DefaultColor otherwise, and IsFocused tells which. Each member decides in
// its DoEnter/DoExit whether its own colour work runs before or after the
// inherited handler; these helpers are that work.
template<class Family, class QtBase>
class TFocusColorNavigation : public TFocusNavigation<Family, QtBase>
{
    using Base = TFocusNavigation<Family, QtBase>;

public:
    // The control starts in its DefaultColor.
    explicit TFocusColorNavigation(QWidget *parent = nullptr) : Base(parent)
    {
        this->SetColor(m_defaultColor);
    }

    TColor ActiveColor() const { return m_activeColor; }
    // Takes effect at the next entry, as the colour is painted only then.
    void SetActiveColor(TColor color) { SetNotified(m_activeColor, color, "ActiveColor"); }
    TColor DefaultColor() const { return m_defaultColor; }
    void SetDefaultColor(TColor color) { SetNotified(m_defaultColor, color, "DefaultColor"); }
    bool IsFocused() const { return m_isFocused; }

protected:
    // Entry: IsFocused and the active colour.
    void ShowActiveColor()
    {
        SetNotified(m_isFocused, true, "IsFocused");
        this->SetColor(m_activeColor);
    }
    // Exit: IsFocused cleared and the default colour.
    void ShowDefaultColor()
    {
        SetNotified(m_isFocused, false, "IsFocused");
        this->SetColor(m_defaultColor);
    }
    // Loaded of most members: a colour stored with the form gives way to
    // DefaultColor at run time.
    void ResetToDefaultColor() { this->SetColor(m_defaultColor); }

private:
    template<class T>
    void SetNotified(T &field, T value, const char *property)
    {
        if (field == value)
            return;
        field = value;
        NotifyPropertyChanged(this, property);
    }

    TColor m_activeColor = clYellow;
    TColor m_defaultColor = clWindow;
    bool m_isFocused = false;
};

} // namespace oxa
