#include "app/diary_copies.h"

#include <QApplication>

namespace app {

DiaryCopies::DiaryCopies(const runtime::Clock& clock, controls::Dialogs& dialogs)
    : dialogs_(dialogs), copies_(clock, [this](const QString& words) { tellLater(words); }),
      hook_([this](const QString& diary) { copies_.beforeChange(diary); })
{
}

void DiaryCopies::tellLater(const QString& words)
{
    const auto tell = [this, words] { dialogs_.showError(QApplication::activeWindow(), words); };
    QMetaObject::invokeMethod(&context_, tell, Qt::QueuedConnection);
}

} // namespace app
