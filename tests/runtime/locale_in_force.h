// Sets the locale in force as long as it lives.
#pragma once

#include <QLocale>

class LocaleInForce
{
public:
    explicit LocaleInForce(const QLocale& locale) { QLocale::setDefault(locale); }
    LocaleInForce(QLocale::Language language, QLocale::Territory territory)
        : LocaleInForce(QLocale(language, territory))
    {
    }
    LocaleInForce(const LocaleInForce&) = delete;
    LocaleInForce& operator=(const LocaleInForce&) = delete;
    ~LocaleInForce() { QLocale::setDefault(before_); }

private:
    QLocale before_;
};

inline const QLocale kBritish(QLocale::English, QLocale::UnitedKingdom);
inline const QLocale kGerman(QLocale::German, QLocale::Germany);
inline const QLocale kFrench(QLocale::French, QLocale::France);
inline const QLocale kSwiss(QLocale::German, QLocale::Switzerland);
inline const QLocale kPolish(QLocale::Polish, QLocale::Poland);
