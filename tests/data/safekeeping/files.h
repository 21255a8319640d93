// What tests of backups look at.
#pragma once

#include "data/database.h"
#include "support/file_content.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <string>
#include <vector>

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
