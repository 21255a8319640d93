// Ends the program as soon as a window has been painted for the first time.
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>

namespace bench {

class QuitAfterPaint : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            // After the event, so that the painting itself counts.
            QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace bench
