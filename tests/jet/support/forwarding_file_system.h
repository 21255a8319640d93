// A file system that passes every call on to another: the base of those that watch or disturb.
#pragma once

#include "jet/disk/file.h"

#include <utility>

namespace jet::test {

class ForwardingFile : public File
{
public:
    explicit ForwardingFile(std::unique_ptr<File> file) : file_(std::move(file)) {}

    void readAt(std::uint64_t offset, MutableBytes buffer) override { file_->readAt(offset, buffer); }
    void writeAt(std::uint64_t offset, ByteView bytes) override { file_->writeAt(offset, bytes); }
    [[nodiscard]] std::uint64_t size() override { return file_->size(); }
    void truncate(std::uint64_t size) override { file_->truncate(size); }
    void sync() override { file_->sync(); }
    void lock(LockLevel level, std::chrono::milliseconds patience) override { file_->lock(level, patience); }
    [[nodiscard]] FileStamp stamp() override { return file_->stamp(); }
    [[nodiscard]] bool isReadOnly() const override { return file_->isReadOnly(); }
    [[nodiscard]] bool isInPlace() override { return file_->isInPlace(); }

private:
    std::unique_ptr<File> file_;
};

class ForwardingFileSystem : public FileSystem
{
public:
    explicit ForwardingFileSystem(FileSystem& inner) : inner_(&inner) {}

    [[nodiscard]] std::unique_ptr<File> open(const std::string& path, OpenMode mode) override
    {
        return inner_->open(path, mode);
    }
    [[nodiscard]] std::unique_ptr<File> createLike(const std::string& path, const std::string& model) override
    {
        return inner_->createLike(path, model);
    }
    [[nodiscard]] std::string resolve(const std::string& path) override { return inner_->resolve(path); }
    [[nodiscard]] bool exists(const std::string& path) override { return inner_->exists(path); }
    void remove(const std::string& path) override { inner_->remove(path); }
    void rename(const std::string& from, const std::string& to) override { inner_->rename(from, to); }
    void syncFolderOf(const std::string& path) override { inner_->syncFolderOf(path); }

private:
    FileSystem* inner_;
};

} // namespace jet::test
