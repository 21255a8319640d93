// soak_writer DIARY SEED FIRST: does the works of a seed from that number on, without end, and writes the number of
// each that is done. Made to be killed.
#include "soak/work.h"

#include <QCoreApplication>
#include <QLocale>

#include <iostream>

int main(int argumentCount, char** arguments)
{
    const QCoreApplication program(argumentCount, arguments);
    QLocale::setDefault(QLocale::c());
    const QStringList given = QCoreApplication::arguments();
    if (given.size() != 4) {
        std::cerr << "usage: soak_writer DIARY SEED FIRST\n";
        return 2;
    }
    try {
        for (int number = given.at(3).toInt();; ++number) {
            soak::doWork(given.at(1), soak::workNumbered(given.at(2).toULongLong(), number));
            std::cout << number << std::endl;
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
