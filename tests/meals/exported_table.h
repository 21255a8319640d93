// What an independent program finds in a diary file.
#pragma once

#include <QString>

#include <string>
#include <vector>

/// The table's records in stored order as mdb-export writes them, their fields by " | ", dates as 05/03/2002 08:15:00;
/// an open value is "null".
[[nodiscard]] std::vector<std::string> exportedTable(const QString& diaryPath, const char* table);
