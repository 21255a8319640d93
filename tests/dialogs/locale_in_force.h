// Another locale for a part of a test.
#pragma once

#include <QLocale>

class LocaleInForce
{
public:
    LocaleInForce(QLocale::Language language, QLocale::Territory territory)
    {
        QLocale::setDefault(QLocale(language, territory));
    }
    LocaleInForce(const LocaleInForce&) = delete;
    LocaleInForce& operator=(const LocaleInForce&) = delete;
    ~LocaleInForce() { QLocale::setDefault(before_); }

private:
    QLocale before_;
};
