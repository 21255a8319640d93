// A new diary file with its tables, saved queries and foods.
#pragma once

#include "runtime/clock.h"

#include <QString>

namespace data {

struct NewDiary {
    QString path;
    QString foodsCsv;   ///< the food table to fill in; empty: no foods
    int sampleDays = 0; ///< so many invented days up to yesterday: of today, some would lie ahead
};

struct NewDiaryContent {
    int foods = 0;
    int readings = 0;
    int meals = 0;
};

/// Makes the file, whole or not at all; until it is whole, NAME-unfinished and NAME-unfinished.lock stand in its
/// folder. Errors are runtime::RunTimeError: 58 "File already exists." when there is something at the path or the
/// journal of a lost diary, 3045 while another program makes the same, 13 or 53 for the food table (see foods_csv.h),
/// 3026 or 3043 for the disk.
NewDiaryContent createDiary(const NewDiary& diary, const runtime::Clock& clock);

} // namespace data
