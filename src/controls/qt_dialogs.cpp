#include "controls/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace controls {

namespace {

void showBox(QWidget* owner, QMessageBox::Icon icon, const QString& text, const QString& title)
{
    QMessageBox box(icon, title, text, QMessageBox::Ok, owner);
    box.setTextFormat(Qt::PlainText); // names and words from a file are not markup
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

} // namespace

void QtDialogs::beep()
{
    QApplication::beep();
}

void QtDialogs::showMessage(QWidget* owner, const QString& text, const QString& title)
{
    showBox(owner, QMessageBox::NoIcon, text, title);
}

void QtDialogs::showError(QWidget* owner, const QString& text, const QString& title)
{
    showBox(owner, QMessageBox::Critical, text, title);
}

QString QtDialogs::askText(QWidget* owner, const QString& prompt, const QString& proposal)
{
    bool accepted = false;
    const QString text = QInputDialog::getText(owner, kTitle, prompt, QLineEdit::Normal, proposal, &accepted);
    return accepted ? text : QString();
}

QString QtDialogs::askSavePath(QWidget* owner, const QString& prompt, const QString& proposal, const QString& filter)
{
    return QFileDialog::getSaveFileName(owner, prompt, proposal, filter);
}

} // namespace controls
