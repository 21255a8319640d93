#include "controls/field_focus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenuBar>

#include <utility>

namespace controls {

FieldFocus::FieldFocus(QWidget& form) : QObject(&form), form_(form)
{
    // The signal comes after both controls have handled their focus events, so the focus may be moved in a handler.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { followFocus(now); });
}

void FieldFocus::watch(QLineEdit& field, std::function<void()> lostFocus)
{
    lostFocus_.insert(&field, std::move(lostFocus));
    field.installEventFilter(this);
}

void FieldFocus::giveBack(QLineEdit& field)
{
    current_ = &field;
    clicked_ = nullptr;
    field.setFocus(Qt::OtherFocusReason);
    emit entered(&field);
}

bool FieldFocus::moveTo(QWidget& control)
{
    // While the window is not the active one, Qt moves its focus without telling anybody.
    followFocus(form_.focusWidget());
    control.setFocus(Qt::MouseFocusReason);
    followFocus(form_.focusWidget());
    return form_.focusWidget() == &control;
}

bool FieldFocus::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        byMouse_ = static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason;
    } else if (event->type() == QEvent::MouseButtonRelease && watched == clicked_) {
        QLineEdit* field = std::exchange(clicked_, nullptr);
        if (!field->hasSelectedText()) {
            emit entered(field);
        }
    }
    return QObject::eventFilter(watched, event);
}

void FieldFocus::followFocus(QWidget* now)
{
    if (now == nullptr || now == current_ || now->window() != form_.window() || qobject_cast<QMenuBar*>(now)) {
        return;
    }
    if (QLineEdit* before = std::exchange(current_, nullptr)) {
        clicked_ = nullptr;
        if (const auto& lostFocus = lostFocus_[before]) {
            lostFocus();
        }
        if (form_.focusWidget() != now) {
            return; // given back
        }
    }
    if (auto* field = qobject_cast<QLineEdit*>(now); field != nullptr && lostFocus_.contains(field)) {
        current_ = field;
        if (byMouse_) {
            clicked_ = field;
        } else {
            emit entered(field);
        }
    }
}

} // namespace controls
