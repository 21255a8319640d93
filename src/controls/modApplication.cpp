#include "controls/modApplication.h"

#include <QDialog>
#include <QLineEdit>

#include <cmath>

namespace controls {

QPoint centredOver(const QRect& owner, const QSize& dialog)
{
    const double left = owner.left() + (owner.width() - dialog.width()) / 2.0;
    const double top = owner.top() + (owner.height() - dialog.height()) / 2.0;
    return {static_cast<int>(std::lround(left)), static_cast<int>(std::trunc(top))};
}

void ShowCentredModal(QDialog& dialog, const QWidget& owner)
{
    Q_ASSERT(dialog.parentWidget() == &owner);
    if (!dialog.testAttribute(Qt::WA_Resized)) {
        dialog.adjustSize();
    }
    // The dialog gets its frame when it is shown; by then it stands where it is. It will be like the owner's.
    const QSize frame = owner.frameSize() - owner.size();
    dialog.move(centredOver(owner.frameGeometry(), dialog.size() + frame));
    dialog.exec();
}

void SelectAll(QWidget* control)
{
    if (auto* textBox = qobject_cast<QLineEdit*>(control)) {
        textBox->selectAll();
    }
}

} // namespace controls
