// The boxes that a form shows, as a dependency, so that tests can answer them.
#pragma once

#include <QString>

class QWidget;

namespace controls {

/// The program's name as boxes show it in their title.
inline const QString kTitle = QStringLiteral("Quillon");

/// All boxes are modal and return when the user has closed them. `owner` is the form that asks.
class Dialogs
{
public:
    virtual ~Dialogs() = default;

    virtual void beep() = 0;
    /// A message with an OK button.
    virtual void showMessage(QWidget* owner, const QString& text, const QString& title = kTitle) = 0;
    /// The same with the sign for an error.
    virtual void showError(QWidget* owner, const QString& text, const QString& title = kTitle) = 0;
    /// A line of text; empty when the user cancels.
    [[nodiscard]] virtual QString askText(QWidget* owner, const QString& prompt, const QString& proposal = {}) = 0;
    /// The path of a file to be written; empty when the user cancels. `filter` as in "Pages (*.pdf)".
    [[nodiscard]] virtual QString askSavePath(QWidget* owner, const QString& prompt, const QString& proposal,
                                              const QString& filter) = 0;
};

} // namespace controls
