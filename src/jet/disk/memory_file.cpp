#include "jet/disk/memory_file.h"
#include "jet/disk/lock_ladder.h"

#include <array>
#include <mutex>
#include <set>

namespace jet {

namespace {

/// The content of one file and the locks on it; the folder's mutex guards it.
struct Node {
    Bytes content;
    std::int64_t changes = 0; ///< serves as the time of last change
    bool readOnly = false;

    struct ByteState {
        std::set<const void*> readers;
        const void* writer = nullptr;
    };
    std::array<ByteState, 3> lockBytes;
};

[[noreturn]] void noSuchFile(const std::string& path)
{
    throw Error(ErrorCode::FileNotFound, "Cannot open " + path + ": No such file or directory");
}

} // namespace

class MemoryFileSystem::Folder
{
public:
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<Node>> nodes;

    [[nodiscard]] Node& at(const std::string& path) const
    {
        const auto found = nodes.find(path);
        if (found == nodes.end()) {
            noSuchFile(path);
        }
        return *found->second;
    }
};

class MemoryFileSystem::OpenFile final : public File, private LockBytes
{
public:
    OpenFile(std::shared_ptr<Folder> folder, std::shared_ptr<Node> node, std::string path, bool readOnly)
        : folder_(std::move(folder)), node_(std::move(node)), path_(std::move(path)), readOnly_(readOnly),
          locks_(*this, path_)
    {
    }

    ~OpenFile() override { locks_.moveTo(LockLevel::None, std::chrono::milliseconds{0}); }

    void readAt(std::uint64_t offset, MutableBytes buffer) override
    {
        const std::lock_guard guard(folder_->mutex);
        const Bytes& content = node_->content;
        if (offset > content.size() || buffer.size() > content.size() - offset) {
            throw Error(ErrorCode::Io,
                        "Cannot read " + path_ + ": it ends before byte " + std::to_string(offset + buffer.size()));
        }
        putBytes(buffer, 0, ByteView(content).subspan(static_cast<std::size_t>(offset), buffer.size()));
    }

    void writeAt(std::uint64_t offset, ByteView bytes) override
    {
        const std::lock_guard guard(folder_->mutex);
        requireWritable();
        if (bytes.empty()) {
            return;
        }
        const std::size_t end = static_cast<std::size_t>(offset) + bytes.size();
        if (end > node_->content.size()) {
            node_->content.resize(end);
        }
        putBytes(node_->content, static_cast<std::size_t>(offset), bytes);
        ++node_->changes;
    }

    std::uint64_t size() override
    {
        const std::lock_guard guard(folder_->mutex);
        return node_->content.size();
    }

    void truncate(std::uint64_t size) override
    {
        const std::lock_guard guard(folder_->mutex);
        requireWritable();
        node_->content.resize(static_cast<std::size_t>(size));
        ++node_->changes;
    }

    void sync() override {}

    void lock(LockLevel level, std::chrono::milliseconds patience) override { locks_.moveTo(level, patience); }

    FileStamp stamp() override
    {
        const std::lock_guard guard(folder_->mutex);
        return FileStamp{.size = node_->content.size(), .changedNanoseconds = node_->changes};
    }

    bool isReadOnly() const override { return readOnly_; }

    bool isInPlace() override
    {
        const std::lock_guard guard(folder_->mutex);
        const auto found = folder_->nodes.find(path_);
        return found != folder_->nodes.end() && found->second == node_;
    }

private:
    void requireWritable() const
    {
        if (readOnly_) {
            throw Error(ErrorCode::Io, "Cannot write " + path_ + ": it was opened for reading only");
        }
    }

    bool trySet(LockByte byte, ByteLock lock) override
    {
        const std::lock_guard guard(folder_->mutex);
        Node::ByteState& state = node_->lockBytes.at(static_cast<std::size_t>(byte));
        const bool writtenByOther = state.writer != nullptr && state.writer != this;
        const bool readByOther = state.readers.size() > state.readers.count(this);
        if ((lock != ByteLock::None && writtenByOther) || (lock == ByteLock::Write && readByOther)) {
            return false;
        }
        state.readers.erase(this);
        if (state.writer == this) {
            state.writer = nullptr;
        }
        if (lock == ByteLock::Read) {
            state.readers.insert(this);
        } else if (lock == ByteLock::Write) {
            state.writer = this;
        }
        return true;
    }

    std::shared_ptr<Folder> folder_;
    std::shared_ptr<Node> node_;
    std::string path_;
    bool readOnly_;
    LockLadder locks_;
};

MemoryFileSystem::MemoryFileSystem() : folder_(std::make_shared<Folder>()) {}

MemoryFileSystem::~MemoryFileSystem() = default;

std::unique_ptr<File> MemoryFileSystem::open(const std::string& path, OpenMode mode)
{
    const std::lock_guard guard(folder_->mutex);
    auto found = folder_->nodes.find(path);
    if (mode == OpenMode::Create) {
        if (found != folder_->nodes.end()) {
            throw Error(ErrorCode::FileExists, "Cannot create " + path + ": File exists");
        }
        found = folder_->nodes.emplace(path, std::make_shared<Node>()).first;
    }
    if (found == folder_->nodes.end()) {
        noSuchFile(path);
    }
    if (mode == OpenMode::ReadWrite && found->second->readOnly) {
        throw Error(ErrorCode::ReadOnly, "Cannot open " + path + " for writing: Permission denied");
    }
    return std::make_unique<OpenFile>(folder_, found->second, path, mode == OpenMode::ReadOnly);
}

std::unique_ptr<File> MemoryFileSystem::createLike(const std::string& path, const std::string& model)
{
    if (!exists(model)) {
        noSuchFile(model);
    }
    return open(path, OpenMode::Create);
}

std::string MemoryFileSystem::resolve(const std::string& path)
{
    if (!exists(path)) {
        noSuchFile(path);
    }
    return path;
}

bool MemoryFileSystem::exists(const std::string& path)
{
    const std::lock_guard guard(folder_->mutex);
    return folder_->nodes.contains(path);
}

void MemoryFileSystem::remove(const std::string& path)
{
    const std::lock_guard guard(folder_->mutex);
    if (folder_->nodes.erase(path) == 0) {
        throw Error(ErrorCode::FileNotFound, "Cannot remove " + path + ": No such file or directory");
    }
}

void MemoryFileSystem::rename(const std::string& from, const std::string& to)
{
    const std::lock_guard guard(folder_->mutex);
    const auto found = folder_->nodes.find(from);
    if (found == folder_->nodes.end()) {
        throw Error(ErrorCode::FileNotFound, "Cannot rename " + from + ": No such file or directory");
    }
    if (from != to) {
        folder_->nodes[to] = found->second;
        folder_->nodes.erase(from);
    }
}

void MemoryFileSystem::syncFolderOf(const std::string& /*path*/) {}

Bytes MemoryFileSystem::content(const std::string& path) const
{
    const std::lock_guard guard(folder_->mutex);
    return folder_->at(path).content;
}

void MemoryFileSystem::setContent(const std::string& path, Bytes content)
{
    const std::lock_guard guard(folder_->mutex);
    std::shared_ptr<Node>& node = folder_->nodes[path];
    if (!node) {
        node = std::make_shared<Node>();
    }
    node->content = std::move(content);
    ++node->changes;
}

void MemoryFileSystem::setReadOnly(const std::string& path, bool readOnly)
{
    const std::lock_guard guard(folder_->mutex);
    folder_->at(path).readOnly = readOnly;
}

std::map<std::string, Bytes> MemoryFileSystem::files() const
{
    const std::lock_guard guard(folder_->mutex);
    std::map<std::string, Bytes> all;
    for (const auto& [path, node] : folder_->nodes) {
        all.emplace(path, node->content);
    }
    return all;
}

} // namespace jet
