// Procedures that all forms share.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QDialog;
class QWidget;

namespace controls {

/// Where a dialog of this size stands so that its centre lies on the owner's; the top is truncated to a whole number.
[[nodiscard]] QPoint centredOver(const QRect& owner, const QSize& dialog);

/// Moves the dialog over its owner's centre and runs it modally. The dialog has been made with `owner` as its parent.
void ShowCentredModal(QDialog& dialog, const QWidget& owner);

/// Selects the whole text of a text box; leaves other controls alone.
void SelectAll(QWidget* control);

} // namespace controls
