// A diary file of its own for a test, gone when the test is.
#pragma once

#include "runtime/value.h"

#include <QString>
#include <QTemporaryDir>

class TestDiary
{
public:
    /// Tables and saved queries, no foods, no readings.
    TestDiary();

    [[nodiscard]] const QString& path() const { return path_; }
    /// `when` as typed: "05/03/2002 08:15". A comment that is null stays unset.
    void addReading(const QString& when, double mmol, int type, const runtime::Value& comment = runtime::Null{});

private:
    QTemporaryDir folder_;
    QString path_;
};
