// What tests of backups look at.
#pragma once

#include "data/database.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <gtest/gtest.h>

#include <string>
#include <vector>

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

inline void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(content), content.size());
}

/// The names in a folder, sorted; nothing for a folder that is not there.
inline std::vector<std::string> namesIn(const QString& folder)
{
    std::vector<std::string> names;
    for (const QString& name :
         QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name)) {
        names.push_back(name.toStdString());
    }
    return names;
}

inline qsizetype readingsIn(const QString& diary)
{
    return data::Database(diary).openRecordset(QStringLiteral("BloodSugarLevels")).recordCount();
}
