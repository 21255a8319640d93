#include "jet/disk/journal.h"

#include <algorithm>
#include <random>

namespace jet {

namespace {

constexpr std::array<char, 8> kMagic{'Q', 'u', 'i', 'l', 'J', 'r', 'n', 'l'};
constexpr std::uint32_t kVersion = 1;

constexpr std::size_t kVersionOffset = 8;
constexpr std::size_t kPageSizeOffset = 12;
constexpr std::size_t kSaltOffset = 16;
constexpr std::size_t kPagesBeforeOffset = 24;
constexpr std::size_t kPagesAfterOffset = 28;
constexpr std::size_t kRecordCountOffset = 32;
constexpr std::size_t kFirstPageOffset = 40;
constexpr std::size_t kHeaderChecksumOffset = JournalHeader::kSize - 8;

constexpr std::size_t kRecordChecksumOffset = 8;

// A journal is read and written in runs of this many records, about 1 MiB: few calls, and bounded memory.
constexpr std::size_t kRecordsInRun = 256;

/// 64-bit FNV-1a, to which bytes are added run by run.
class Checksum
{
public:
    explicit Checksum(std::uint64_t salt) : hash_(0xcbf2'9ce4'8422'2325U ^ salt) {}

    Checksum& add(ByteView bytes)
    {
        for (const std::byte byte : bytes) {
            hash_ = (hash_ ^ std::to_integer<std::uint64_t>(byte)) * 0x0000'0100'0000'01b3U;
        }
        return *this;
    }

    [[nodiscard]] std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_;
};

std::uint64_t checksum(std::uint64_t salt, ByteView bytes)
{
    return Checksum(salt).add(bytes).value();
}

std::uint64_t recordChecksum(ByteView record, std::uint64_t salt)
{
    return Checksum(salt)
        .add(record.first(kRecordChecksumOffset))
        .add(record.subspan(JournalRecord::kPrefixSize))
        .value();
}

std::uint64_t newSalt()
{
    std::random_device random;
    return (std::uint64_t{random()} << 32U) | random();
}

[[noreturn]] void damaged(const std::string& reason)
{
    throw Error(ErrorCode::JournalDamaged, reason);
}

} // namespace

SectorChecksums sectorChecksums(const Page& page, std::uint64_t salt)
{
    SectorChecksums sums;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        sums.at(i) = checksum(salt, slice(ByteView(page), i * kSectorSize, kSectorSize));
    }
    return sums;
}

Bytes JournalHeader::encode() const
{
    Bytes bytes(kSize);
    putBytes(bytes, 0, std::as_bytes(std::span(kMagic)));
    putU32(bytes, kVersionOffset, kVersion);
    putU32(bytes, kPageSizeOffset, kPageSize);
    putU64(bytes, kSaltOffset, salt);
    putU32(bytes, kPagesBeforeOffset, pagesBefore);
    putU32(bytes, kPagesAfterOffset, pagesAfter);
    putU32(bytes, kRecordCountOffset, recordCount);
    for (std::size_t i = 0; i < firstPageAfter.size(); ++i) {
        putU64(bytes, kFirstPageOffset + 8 * i, firstPageAfter.at(i));
    }
    putU64(bytes, kHeaderChecksumOffset, checksum(salt, ByteView(bytes).first(kHeaderChecksumOffset)));
    return bytes;
}

JournalHeader JournalHeader::decode(ByteView bytes)
{
    if (bytes.size() < kSize) {
        damaged("it ends inside its header");
    }
    if (!std::ranges::equal(bytes.first(kMagic.size()), std::as_bytes(std::span(kMagic)))) {
        damaged("it does not begin as a journal does");
    }
    JournalHeader header;
    header.salt = getU64(bytes, kSaltOffset);
    if (getU64(bytes, kHeaderChecksumOffset) != checksum(header.salt, bytes.first(kHeaderChecksumOffset))) {
        damaged("its header is damaged");
    }
    if (getU32(bytes, kVersionOffset) != kVersion || getU32(bytes, kPageSizeOffset) != kPageSize) {
        damaged("it was written by another version of this program");
    }
    header.pagesBefore = getU32(bytes, kPagesBeforeOffset);
    header.pagesAfter = getU32(bytes, kPagesAfterOffset);
    header.recordCount = getU32(bytes, kRecordCountOffset);
    for (std::size_t i = 0; i < header.firstPageAfter.size(); ++i) {
        header.firstPageAfter.at(i) = getU64(bytes, kFirstPageOffset + 8 * i);
    }
    const bool holdsFirstPage = header.pagesBefore == 0 || header.recordCount > 0;
    if (header.pagesBefore > header.pagesAfter || header.pagesAfter > kMaxPageCount ||
        header.recordCount > header.pagesBefore || !holdsFirstPage) {
        damaged("its header contradicts itself");
    }
    return header;
}

void JournalRecord::encode(PageNumber page, const Page& content, std::uint64_t salt, MutableBytes to)
{
    const MutableBytes record = slice(to, 0, kSize);
    putU64(record, 0, page);
    putBytes(record, kPrefixSize, content);
    putU64(record, kRecordChecksumOffset, recordChecksum(record, salt));
}

JournalRecord JournalRecord::decode(ByteView bytes, std::uint64_t salt)
{
    const ByteView record = slice(bytes, 0, kSize);
    if (getU64(record, kRecordChecksumOffset) != recordChecksum(record, salt)) {
        damaged("one of its records is damaged");
    }
    JournalRecord decoded;
    decoded.page = getU32(record, 0);
    putBytes(decoded.content, 0, record.subspan(kPrefixSize));
    return decoded;
}

Journal::Journal(FileSystem& fileSystem, std::string path)
    : fileSystem_(&fileSystem), filePath_(std::move(path)), path_(filePath_ + "-journal"),
      unfinishedPath_(path_ + "-unfinished")
{
}

void Journal::write(PageNumber pagesBefore, PageNumber pagesAfter, std::span<const ChangedPage> pages)
{
    if (pages.empty() || pages.front().number != 0) {
        throw Error(ErrorCode::InvalidArgument, "A journal needs page 0 among the pages of the commit");
    }
    std::vector<const ChangedPage*> overwritten;
    for (const ChangedPage& page : pages) {
        if (page.number < pagesBefore) {
            overwritten.push_back(&page);
        }
    }
    JournalHeader header;
    header.salt = newSalt();
    header.pagesBefore = pagesBefore;
    header.pagesAfter = pagesAfter;
    header.recordCount = static_cast<std::uint32_t>(overwritten.size());
    header.firstPageAfter = sectorChecksums(*pages.front().after, header.salt);

    if (fileSystem_->exists(unfinishedPath_)) {
        fileSystem_->remove(unfinishedPath_);
    }
    {
        const std::unique_ptr<File> file = fileSystem_->createLike(unfinishedPath_, filePath_);
        Bytes run = header.encode();
        std::uint64_t offset = 0;
        for (std::size_t i = 0; i < overwritten.size(); ++i) {
            const std::size_t place = run.size();
            run.resize(place + JournalRecord::kSize);
            JournalRecord::encode(overwritten[i]->number, *overwritten[i]->before, header.salt,
                                  MutableBytes(run).subspan(place));
            if ((i + 1) % kRecordsInRun == 0) {
                file->writeAt(offset, run);
                offset += run.size();
                run.clear();
            }
        }
        file->writeAt(offset, run);
        file->sync();
    }
    fileSystem_->rename(unfinishedPath_, path_);
    fileSystem_->syncFolderOf(path_);
}

void Journal::retire()
{
    fileSystem_->rename(path_, unfinishedPath_);
    try {
        fileSystem_->syncFolderOf(path_);
    } catch (...) {
        fileSystem_->rename(unfinishedPath_, path_);
        throw;
    }
    discardUnfinished();
}

void Journal::discardUnfinished() noexcept
{
    try {
        if (fileSystem_->exists(unfinishedPath_)) {
            fileSystem_->remove(unfinishedPath_);
        }
    } catch (...) {
        return; // the next journal tries again
    }
}

void Journal::rollBack(File& file)
{
    const std::unique_ptr<File> journal = fileSystem_->open(path_, OpenMode::ReadOnly);
    try {
        const JournalHeader header = readHeader(*journal);

        // Everything is checked before anything is written.
        Page firstPageBefore{};
        PageNumber lowestAllowed = 0;
        forEachRecord(*journal, header, [&](const JournalRecord& record) {
            const bool isFirst = lowestAllowed == 0;
            if (record.page < lowestAllowed || record.page >= header.pagesBefore || (isFirst && record.page != 0)) {
                damaged("its records are out of order");
            }
            if (isFirst) {
                firstPageBefore = record.content;
            }
            lowestAllowed = record.page + 1;
        });
        requireBelongsTo(file, header, firstPageBefore);

        // Whoever gave the journal its name back, or was stopped right after the rename, may not have come to this.
        fileSystem_->syncFolderOf(path_);
        forEachRecord(*journal, header,
                      [&](const JournalRecord& record) { file.writeAt(pageOffset(record.page), record.content); });
        file.truncate(pageOffset(header.pagesBefore));
    } catch (const Error& error) {
        if (error.code() == ErrorCode::JournalDamaged) {
            refuse(error.what());
        }
        throw;
    }
    file.sync();
    retire();
}

JournalHeader Journal::readHeader(File& journal) const
{
    const std::uint64_t size = journal.size();
    Bytes bytes(static_cast<std::size_t>(std::min<std::uint64_t>(size, JournalHeader::kSize)));
    journal.readAt(0, bytes);
    const JournalHeader header = JournalHeader::decode(bytes);
    if ((size - JournalHeader::kSize) / JournalRecord::kSize < header.recordCount) {
        damaged("it ends before its last record");
    }
    return header;
}

template <typename Visit>
void Journal::forEachRecord(File& journal, const JournalHeader& header, Visit visit) const
{
    std::uint64_t offset = JournalHeader::kSize;
    Bytes run;
    for (std::size_t done = 0; done < header.recordCount;) {
        const std::size_t count = std::min<std::size_t>(kRecordsInRun, header.recordCount - done);
        run.resize(count * JournalRecord::kSize);
        journal.readAt(offset, run);
        for (std::size_t i = 0; i < count; ++i) {
            visit(JournalRecord::decode(ByteView(run).subspan(i * JournalRecord::kSize), header.salt));
        }
        offset += run.size();
        done += count;
    }
}

void Journal::requireBelongsTo(File& file, const JournalHeader& header, const Page& firstPageBefore) const
{
    const std::uint64_t size = file.size();
    if (size < pageOffset(header.pagesBefore) || size > pageOffset(header.pagesAfter)) {
        damaged("it belongs to a file of another size");
    }
    // Where the commit was to make page 0, the part that is not there yet reads as the zeros of firstPageBefore.
    Page firstPage{};
    const std::size_t there = static_cast<std::size_t>(std::min<std::uint64_t>(size, kPageSize));
    file.readAt(0, MutableBytes(firstPage).first(there));
    const SectorChecksums found = sectorChecksums(firstPage, header.salt);
    const SectorChecksums before = sectorChecksums(firstPageBefore, header.salt);
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (found.at(i) != before.at(i) && found.at(i) != header.firstPageAfter.at(i)) {
            damaged("it belongs to another file, or the file was changed since");
        }
    }
}

void Journal::refuse(const std::string& reason) const
{
    throw Error(ErrorCode::JournalDamaged, "The last change to " + filePath_ + " was interrupted, and its journal " +
                                               path_ + " cannot be used to take it back: " + reason +
                                               "; both files were left as they are");
}

} // namespace jet
