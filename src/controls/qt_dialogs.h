// The boxes as the user sees them.
#pragma once

#include "controls/dialogs.h"

namespace controls {

class QtDialogs : public Dialogs
{
public:
    void beep() override;
    void showMessage(QWidget* owner, const QString& text, const QString& title = kTitle) override;
    void showError(QWidget* owner, const QString& text, const QString& title = kTitle) override;
    [[nodiscard]] QString askText(QWidget* owner, const QString& prompt, const QString& proposal = {}) override;
    [[nodiscard]] QString askSavePath(QWidget* owner, const QString& prompt, const QString& proposal,
                                      const QString& filter) override;
};

} // namespace controls
