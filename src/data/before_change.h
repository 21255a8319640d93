// What is to happen before a diary is changed.
#pragma once

#include <QString>

#include <functional>

namespace data {

/// As long as it lives, the call gets the diary's path before each change that this process makes through Database and
/// Recordset: before its transaction begins, and before a batch once. It may open the diary and must not throw: nothing
/// keeps an entry from being stored. While another one lives, that one is called instead. It is one for the process and
/// has no lock: for programs that change diaries in one thread.
class BeforeChange
{
public:
    using Call = std::function<void(const QString& path)>;

    explicit BeforeChange(Call call);
    BeforeChange(const BeforeChange&) = delete;
    BeforeChange& operator=(const BeforeChange&) = delete;
    ~BeforeChange();

private:
    Call outer_;
};

} // namespace data
