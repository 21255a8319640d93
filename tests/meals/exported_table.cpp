#include "meals/exported_table.h"

#include <QProcess>

#include <gtest/gtest.h>

std::vector<std::string> exportedTable(const QString& diaryPath, const char* table)
{
    QProcess mdbExport;
    mdbExport.start(QStringLiteral(QUILLON_MDB_EXPORT),
                    {QStringLiteral("-H"), QStringLiteral("-Q"), QStringLiteral("-d"), QStringLiteral(" | "),
                     QStringLiteral("-T"), QStringLiteral("%d/%m/%Y %H:%M:%S"), QStringLiteral("-0"),
                     QStringLiteral("null"), diaryPath, QString::fromLatin1(table)});
    EXPECT_TRUE(mdbExport.waitForFinished());
    EXPECT_EQ(mdbExport.exitCode(), 0);
    std::vector<std::string> records;
    for (const QString& line : QString::fromUtf8(mdbExport.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts)) {
        records.push_back(line.toStdString());
    }
    return records;
}
