// An error on its way through SQLite, whose C code no exception may pass.
#pragma once

#include <sqlite3.h>

#include <exception>
#include <new>

namespace data {

/// A callback keeps its exception here and returns an error code; who called SQLite throws it again.
class PendingError
{
public:
    /// Calls the work; a code for what it threw, which is kept.
    template <typename Work>
    int guard(const Work& work) noexcept
    {
        try {
            work();
            return SQLITE_OK;
        } catch (const std::bad_alloc&) {
            return SQLITE_NOMEM;
        } catch (...) {
            error_ = std::current_exception();
            return SQLITE_ERROR;
        }
    }

    /// The same for a function of SQL, whose statement then fails.
    template <typename Work>
    void guard(sqlite3_context* context, const Work& work) noexcept
    {
        const int code = guard(work);
        if (code == SQLITE_NOMEM) {
            sqlite3_result_error_nomem(context);
        } else if (code != SQLITE_OK) {
            sqlite3_result_error(context, "failed", -1);
        }
    }

    void clear() { error_ = nullptr; }
    /// Throws the error, where there is one, and forgets it.
    void rethrow()
    {
        if (error_ != nullptr) {
            const std::exception_ptr error = error_;
            error_ = nullptr;
            std::rethrow_exception(error);
        }
    }

private:
    std::exception_ptr error_;
};

} // namespace data
