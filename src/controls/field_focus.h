// When the user enters and leaves a form's text boxes.
#pragma once

#include <QHash>
#include <QObject>

#include <functional>

class QLineEdit;
class QWidget;

namespace controls {

/// Tells a form when the user enters or leaves a watched text box for another control of the same form. A menu, another
/// window, a message box or the form's closing take the user out of no field.
class FieldFocus : public QObject
{
    Q_OBJECT

public:
    explicit FieldFocus(QWidget& form);

    /// `lostFocus` is called when the user has left the field; it throws nothing.
    void watch(QLineEdit& field, std::function<void()> lostFocus = {});

    /// Puts the focus back into a field that the user has just left, as if it had never gone: the control that loses it
    /// again does not count as left. Made for a field's `lostFocus`.
    void giveBack(QLineEdit& field);

    /// Gives the focus to a control, as a click on it does; false when the field that has it took it back. For buttons
    /// that do not take the focus by themselves, so that a click on them reaches its handler in any case.
    bool moveTo(QWidget& control);

signals:
    /// By the mouse: when its button is up again, so that a selection made by the handler stays. A selection that the
    /// user drew with the mouse stays too: then there is no signal.
    void entered(QLineEdit* field);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followFocus(QWidget* now);

    QWidget& form_;
    QHash<QWidget*, std::function<void()>> lostFocus_; ///< by watched field
    QLineEdit* current_ = nullptr;                     ///< the field that the user is in
    QLineEdit* clicked_ = nullptr;                     ///< entered by the mouse, whose button is still down
    bool byMouse_ = false;
};

} // namespace controls
