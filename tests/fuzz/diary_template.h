// A diary that is made once and copied for each input.
#pragma once

#include "support/test_diary.h"

#include <QFile>

#include <cstdlib>
#include <iostream>

class DiaryTemplate
{
public:
    template <typename Fill>
    explicit DiaryTemplate(Fill&& fill) : made_(), copy_(made_.path() + QStringLiteral(".copy"))
    {
        fill(made_);
        QFile file(made_.path());
        if (file.open(QIODevice::ReadOnly)) {
            content_ = file.readAll();
        }
    }

    /// The path of a diary as it was made, whatever was done to the one before.
    [[nodiscard]] QString fresh() const
    {
        QFile file(copy_);
        if (!file.open(QIODevice::WriteOnly) || file.write(content_) != content_.size()) {
            std::cerr << "The diary cannot be copied: " << file.errorString().toStdString() << "\n";
            std::abort();
        }
        return copy_;
    }

private:
    TestDiary made_;
    QString copy_;
    QByteArray content_;
};
