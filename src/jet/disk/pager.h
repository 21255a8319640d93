// Pages of a file, changed in transactions that are atomic and durable.
#pragma once

#include "jet/disk/file.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace jet {

inline constexpr std::size_t kPageSize = 4096;
using Page = std::array<std::byte, kPageSize>;
/// A page that stays valid and unchanged as long as somebody holds it.
using PageRef = std::shared_ptr<const Page>;

class Pager
{
public:
    /// How long to wait for a lock that another program holds before giving up with Locked.
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// Opens an existing file; rolls back a hot journal. Checks no content beyond the size being a multiple of a page.
    Pager(FileSystem& fileSystem, std::string path, OpenMode mode);
    ~Pager();

    [[nodiscard]] const std::string& path() const;
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] PageNumber pageCount() const;
    /// Rises whenever cached pages were dropped because another program changed the file, or a change was rolled back:
    /// whatever was decoded from pages before is then stale.
    [[nodiscard]] std::uint64_t generation() const;

    // Reading. Between beginRead and endRead (they nest) the file does not change under the reader.
    void beginRead();
    void endRead();
    /// Requires a read or a transaction in progress. Throws Corrupt for a page past the end.
    [[nodiscard]] PageRef read(PageNumber page);

    // Changing: one transaction at a time. Nothing reaches the file before commit.
    void begin();                             ///< takes the reserved lock
    [[nodiscard]] bool inTransaction() const;
    /// The page for changing in place; the reference is good until the next call of any function of the pager.
    [[nodiscard]] Page& modify(PageNumber page);
    /// A new page, all zero, at the end of the file.
    [[nodiscard]] PageNumber append();
    void commit();                            ///< durable when it returns; when it throws, the transaction is rolled back
    void rollback();

    // Part of a transaction that can be taken back on its own. Savepoints nest like brackets.
    using Savepoint = std::size_t;
    [[nodiscard]] Savepoint savepoint();
    void rollbackTo(Savepoint savepoint);
    void release(Savepoint savepoint);

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

/// Holds a read for as long as it lives.
class ReadGuard
{
public:
    explicit ReadGuard(Pager& pager) : pager_(&pager) { pager.beginRead(); }
    ReadGuard(const ReadGuard&) = delete;
    ReadGuard& operator=(const ReadGuard&) = delete;
    ReadGuard(ReadGuard&& other) noexcept : pager_(other.pager_) { other.pager_ = nullptr; }
    ReadGuard& operator=(ReadGuard&&) = delete;
    ~ReadGuard()
    {
        if (pager_ != nullptr) {
            pager_->endRead();
        }
    }

private:
    Pager* pager_;
};

} // namespace jet
