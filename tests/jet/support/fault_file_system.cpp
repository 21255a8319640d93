#include "jet/support/fault_file_system.h"

#include "jet/disk/memory_file.h"

#include <gtest/gtest.h>

namespace jet::test {

class FaultFileSystem::State
{
public:
    std::optional<Fault> fault;
    std::size_t calls = 0;
    bool failed = false;

    [[nodiscard]] bool strikes(Call call)
    {
        if (!fault || (fault->call && *fault->call != call)) {
            return false;
        }
        const std::size_t number = calls++;
        if (number == fault->at || (fault->lasting && number > fault->at)) {
            failed = true;
            return true;
        }
        return false;
    }

    [[noreturn]] void fail() const { throw Error(fault->code, "A call failed because the test wants it to"); }

    void pass(Call call)
    {
        if (strikes(call)) {
            fail();
        }
    }
};

class FaultFileSystem::OpenFile final : public ForwardingFile
{
public:
    OpenFile(std::shared_ptr<State> state, std::unique_ptr<File> file)
        : ForwardingFile(std::move(file)), state_(std::move(state))
    {
    }

    void readAt(std::uint64_t offset, MutableBytes buffer) override
    {
        state_->pass(Call::Read);
        ForwardingFile::readAt(offset, buffer);
    }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        if (state_->strikes(Call::Write)) {
            ForwardingFile::writeAt(offset, bytes.first(bytes.size() / 2));
            state_->fail();
        }
        ForwardingFile::writeAt(offset, bytes);
    }

    std::uint64_t size() override
    {
        state_->pass(Call::Size);
        return ForwardingFile::size();
    }

    void truncate(std::uint64_t size) override
    {
        state_->pass(Call::Truncate);
        ForwardingFile::truncate(size);
    }

    void sync() override
    {
        state_->pass(Call::Sync);
        ForwardingFile::sync();
    }

    void lock(LockLevel level, std::chrono::milliseconds patience) override
    {
        if (level > level_) {
            state_->pass(Call::Lock);
        }
        ForwardingFile::lock(level, patience);
        level_ = level;
    }

    FileStamp stamp() override
    {
        state_->pass(Call::Stamp);
        return ForwardingFile::stamp();
    }

    bool isInPlace() override
    {
        state_->pass(Call::Stamp);
        return ForwardingFile::isInPlace();
    }

private:
    std::shared_ptr<State> state_;
    LockLevel level_ = LockLevel::None;
};

FaultFileSystem::FaultFileSystem(FileSystem& inner) : ForwardingFileSystem(inner), state_(std::make_shared<State>()) {}

FaultFileSystem::~FaultFileSystem() = default;

void FaultFileSystem::set(const Fault& fault)
{
    state_->fault = fault;
    state_->calls = 0;
    state_->failed = false;
}

void FaultFileSystem::heal()
{
    state_->fault.reset();
}
bool FaultFileSystem::hasFailed() const
{
    return state_->failed;
}

std::unique_ptr<File> FaultFileSystem::open(const std::string& path, OpenMode mode)
{
    state_->pass(mode == OpenMode::Create ? Call::Create : Call::Open);
    return std::make_unique<OpenFile>(state_, ForwardingFileSystem::open(path, mode));
}

std::unique_ptr<File> FaultFileSystem::createLike(const std::string& path, const std::string& model)
{
    state_->pass(Call::Create);
    return std::make_unique<OpenFile>(state_, ForwardingFileSystem::createLike(path, model));
}

std::string FaultFileSystem::resolve(const std::string& path)
{
    state_->pass(Call::Resolve);
    return ForwardingFileSystem::resolve(path);
}

bool FaultFileSystem::exists(const std::string& path)
{
    state_->pass(Call::Exists);
    return ForwardingFileSystem::exists(path);
}

void FaultFileSystem::remove(const std::string& path)
{
    state_->pass(Call::Remove);
    ForwardingFileSystem::remove(path);
}

void FaultFileSystem::rename(const std::string& from, const std::string& to)
{
    state_->pass(Call::Rename);
    ForwardingFileSystem::rename(from, to);
}

void FaultFileSystem::syncFolderOf(const std::string& path)
{
    state_->pass(Call::SyncFolder);
    ForwardingFileSystem::syncFolderOf(path);
}

std::size_t forEachFault(const FaultTest& test)
{
    std::size_t faults = 0;
    for (const bool lasting : {false, true}) {
        for (std::size_t at = 0;; ++at) {
            SCOPED_TRACE("call " + std::to_string(at) + (lasting ? " and all after it fail" : " fails"));
            MemoryFileSystem disk;
            test.prepare(disk);
            FaultFileSystem faulty(disk);
            faulty.set(Fault{.at = at, .lasting = lasting, .call = test.call, .code = test.code});
            bool finished = true;
            try {
                test.body(faulty);
            } catch (const Error& error) {
                finished = false;
                EXPECT_TRUE(faulty.hasFailed()) << "failed although every call worked: " << error.what();
            }
            const bool struck = faulty.hasFailed();
            faulty.heal();
            try {
                test.check(disk, finished);
            } catch (const Error& error) {
                ADD_FAILURE() << "the check ended with an error: " << error.what();
            }
            if (!struck || testing::Test::HasFailure()) {
                break;
            }
            ++faults;
        }
    }
    return faults;
}

} // namespace jet::test
