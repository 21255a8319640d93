#include "jet/support/disk_trace.h"

#include "jet/support/forwarding_file_system.h"

#include <utility>

namespace jet::test {

namespace {

struct Describer {
    std::string operator()(const Created& event) const { return "creation of " + event.path; }
    std::string operator()(const Written& event) const
    {
        return "write of " + std::to_string(event.bytes.size()) + " bytes at " + std::to_string(event.offset) +
               " of file " + std::to_string(event.file);
    }
    std::string operator()(const Resized& event) const
    {
        return "resizing of file " + std::to_string(event.file) + " to " + std::to_string(event.size);
    }
    std::string operator()(const Synced& event) const { return "sync of file " + std::to_string(event.file); }
    std::string operator()(const Renamed& event) const { return "renaming of " + event.from + " to " + event.to; }
    std::string operator()(const Removed& event) const { return "removal of " + event.path; }
    std::string operator()(const FolderSynced& /*event*/) const { return "sync of the folder"; }
    std::string operator()(const Released& /*event*/) const { return "release of the lock"; }
};

} // namespace

std::string describe(const Event& event)
{
    return std::visit(Describer{}, event);
}

struct RecordingFileSystem::Record {
    Files start;
    MemoryFileSystem seen; ///< what programs see, and their locks
    std::map<std::string, FileNumber> numbers;
    FileNumber nextNumber = 0;
    std::vector<Event> events;
};

class RecordingFileSystem::OpenFile final : public ForwardingFile
{
public:
    OpenFile(std::shared_ptr<Record> record, FileNumber number, std::unique_ptr<File> file)
        : ForwardingFile(std::move(file)), record_(std::move(record)), number_(number)
    {
    }

    ~OpenFile() override { noteLevel(LockLevel::None); }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        ForwardingFile::writeAt(offset, bytes);
        record_->events.emplace_back(Written{number_, offset, Bytes(bytes.begin(), bytes.end())});
    }

    void truncate(std::uint64_t size) override
    {
        ForwardingFile::truncate(size);
        record_->events.emplace_back(Resized{number_, size});
    }

    void sync() override { record_->events.emplace_back(Synced{number_}); }

    void lock(LockLevel level, std::chrono::milliseconds patience) override
    {
        ForwardingFile::lock(level, patience);
        noteLevel(level);
    }

private:
    void noteLevel(LockLevel level)
    {
        if (level_ == LockLevel::Exclusive && level != LockLevel::Exclusive) {
            record_->events.emplace_back(Released{});
        }
        level_ = level;
    }

    std::shared_ptr<Record> record_;
    FileNumber number_;
    LockLevel level_ = LockLevel::None;
};

RecordingFileSystem::RecordingFileSystem(Files files) : record_(std::make_shared<Record>())
{
    for (const auto& [path, content] : files) {
        record_->seen.setContent(path, content);
        record_->numbers[path] = record_->nextNumber++;
    }
    record_->start = std::move(files);
}

RecordingFileSystem::~RecordingFileSystem() = default;

const Files& RecordingFileSystem::start() const
{
    return record_->start;
}
const std::vector<Event>& RecordingFileSystem::events() const
{
    return record_->events;
}
Files RecordingFileSystem::files() const
{
    return record_->seen.files();
}

std::unique_ptr<File> RecordingFileSystem::open(const std::string& path, OpenMode mode)
{
    std::unique_ptr<File> file = record_->seen.open(path, mode);
    if (mode == OpenMode::Create) {
        const FileNumber number = record_->nextNumber++;
        record_->numbers[path] = number;
        record_->events.emplace_back(Created{number, path});
    }
    return std::make_unique<OpenFile>(record_, record_->numbers.at(path), std::move(file));
}

std::unique_ptr<File> RecordingFileSystem::createLike(const std::string& path, const std::string& model)
{
    static_cast<void>(resolve(model));
    return open(path, OpenMode::Create);
}

std::string RecordingFileSystem::resolve(const std::string& path)
{
    return record_->seen.resolve(path);
}

bool RecordingFileSystem::exists(const std::string& path)
{
    return record_->seen.exists(path);
}

void RecordingFileSystem::remove(const std::string& path)
{
    record_->seen.remove(path);
    record_->numbers.erase(path);
    record_->events.emplace_back(Removed{path});
}

void RecordingFileSystem::rename(const std::string& from, const std::string& to)
{
    record_->seen.rename(from, to);
    record_->numbers[to] = record_->numbers.at(from);
    record_->numbers.erase(from);
    record_->events.emplace_back(Renamed{from, to});
}

void RecordingFileSystem::syncFolderOf(const std::string& /*path*/)
{
    record_->events.emplace_back(FolderSynced{});
}

} // namespace jet::test
