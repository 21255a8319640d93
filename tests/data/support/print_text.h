// Texts of Qt in the messages of failed expectations; every file of a test program must include it or none.
#pragma once

#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}
