#include "jet/support/disk_state.h"

#include "jet/disk/journal.h"
#include "jet/disk/page.h"

#include <algorithm>
#include <random>
#include <utility>

namespace jet::test {

/// A part of a change that survives or not by itself: at most a page of a write, or a new size.
struct DiskState::Piece {
    FileNumber file = 0;
    std::uint64_t offset = 0;
    ByteView bytes;
    bool isSize = false;
    bool isNew = false; ///< past what is certain of the file

    [[nodiscard]] Piece part(std::size_t from, std::size_t length) const
    {
        Piece result = *this;
        result.offset += from;
        result.bytes = bytes.subspan(from, length);
        return result;
    }

    void applyTo(Bytes& content) const
    {
        const std::size_t start = static_cast<std::size_t>(offset);
        if (isSize) {
            content.resize(start);
            return;
        }
        if (content.size() < start + bytes.size()) {
            content.resize(start + bytes.size());
        }
        putBytes(content, start, bytes);
    }
};

class DiskState::Chance
{
public:
    explicit Chance(std::uint64_t seed) : random_(seed) {}
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
    bool coin() { return below(2) == 0; }
    /// A place to tear at: between sectors or anywhere, with something on each side.
    std::size_t tearing(std::size_t length)
    {
        const std::size_t anywhere = 1 + below(length - 1);
        return coin() && length > kSectorSize ? std::max(kSectorSize, anywhere / kSectorSize * kSectorSize) : anywhere;
    }
    template <typename Items>
    void shuffle(Items& items)
    {
        for (std::size_t left = items.size(); left > 1; --left) {
            std::swap(items[left - 1], items[below(left)]);
        }
    }

private:
    std::mt19937_64 random_;
};

std::string Survival::describe() const
{
    switch (kind) {
    case Kind::Nothing:
        return "nothing survived";
    case Kind::Everything:
        return "everything survived";
    case Kind::Writes:
        return "all writes survived and no name";
    case Kind::Names:
        return "all names survived and no write";
    case Kind::AllBut:
        return "all writes but one piece survived, seed " + std::to_string(seed);
    case Kind::Only:
        return "one piece of the writes survived, seed " + std::to_string(seed);
    case Kind::UpTo:
        return "the writes survived up to some byte, seed " + std::to_string(seed);
    case Kind::AnyPart:
        break;
    }
    return "some of the writes survived, seed " + std::to_string(seed);
}

std::vector<Survival> Survival::several(std::size_t byChance, std::uint64_t seed)
{
    std::vector<Survival> all{{Kind::Nothing}, {Kind::Everything}, {Kind::Writes}, {Kind::Names}};
    // What is chance's own comes as often as the three others together.
    constexpr std::array kKinds{Kind::AnyPart, Kind::AllBut, Kind::AnyPart, Kind::UpTo, Kind::AnyPart, Kind::Only};
    std::mt19937_64 random(seed);
    const std::size_t first = static_cast<std::size_t>(random() % kKinds.size());
    for (std::size_t i = 0; i < byChance; ++i) {
        all.push_back({kKinds.at((first + i) % kKinds.size()), random()});
    }
    return all;
}

DiskState::DiskState(const Files& files)
{
    for (const auto& [path, content] : files) {
        const FileNumber number = files_.size();
        files_[number].certain = content;
        names_[path] = {number};
    }
}

void DiskState::lead(const std::string& path, std::optional<FileNumber> file)
{
    History& history = names_[path];
    if (history.empty()) {
        history.emplace_back(); // it led nowhere
    }
    history.push_back(file);
}

void DiskState::apply(const Event& event)
{
    if (const auto* created = std::get_if<Created>(&event)) {
        files_[created->file] = {};
        lead(created->path, created->file);
    } else if (const auto* written = std::get_if<Written>(&event)) {
        files_.at(written->file).unsynced.push_back({written->offset, written->bytes});
    } else if (const auto* resized = std::get_if<Resized>(&event)) {
        files_.at(resized->file).unsynced.push_back({resized->size, std::nullopt});
    } else if (const auto* synced = std::get_if<Synced>(&event)) {
        StoredFile& file = files_.at(synced->file);
        for (const Change& change : std::exchange(file.unsynced, {})) {
            Piece{.offset = change.offset,
                  .bytes = change.bytes ? ByteView(*change.bytes) : ByteView(),
                  .isSize = !change.bytes}
                .applyTo(file.certain);
        }
    } else if (const auto* renamed = std::get_if<Renamed>(&event)) {
        lead(renamed->to, names_.at(renamed->from).back());
        lead(renamed->from, std::nullopt);
    } else if (const auto* removed = std::get_if<Removed>(&event)) {
        lead(removed->path, std::nullopt);
    } else if (std::holds_alternative<FolderSynced>(event)) {
        for (auto& [path, history] : names_) {
            history.erase(history.begin(), history.end() - 1);
        }
        std::erase_if(names_, [](const auto& name) { return !name.second.back(); });
    }
}

bool DiskState::isSettled() const
{
    return std::all_of(names_.begin(), names_.end(), [&](const auto& name) {
        const History& history = name.second;
        return history.size() == 1 && files_.at(*history.back()).unsynced.empty();
    });
}

std::vector<DiskState::Piece> DiskState::piecesOf(const std::map<FileNumber, Bytes>& files) const
{
    std::vector<Piece> pieces;
    for (const auto& [number, certain] : files) {
        for (const Change& change : files_.at(number).unsynced) {
            if (!change.bytes) {
                pieces.push_back({.file = number, .offset = change.offset, .bytes = {}, .isSize = true});
                continue;
            }
            ByteView rest = *change.bytes;
            std::uint64_t offset = change.offset;
            while (!rest.empty()) {
                const auto inPage = static_cast<std::size_t>(offset % kPageSize);
                const std::size_t length = std::min(rest.size(), kPageSize - inPage);
                pieces.push_back(
                    {.file = number, .offset = offset, .bytes = rest.first(length), .isNew = offset >= certain.size()});
                offset += length;
                rest = rest.subspan(length);
            }
        }
    }
    return pieces;
}

void DiskState::tear(const Piece& piece, Chance& chance, std::vector<Piece>& survivors)
{
    static const Bytes kByChance(kPageSize, std::byte{0xA5});
    const std::size_t length = piece.bytes.size();
    if (length < 2) {
        return;
    }
    if (piece.isNew && chance.below(4) == 0) {
        Piece stale = piece;
        stale.bytes = ByteView(kByChance).first(length);
        survivors.push_back(stale);
    }
    switch (chance.below(3)) {
    case 0:
        survivors.push_back(piece.part(0, chance.tearing(length)));
        break;
    case 1: {
        const std::size_t from = chance.tearing(length);
        survivors.push_back(piece.part(from, length - from));
        break;
    }
    default:
        for (std::size_t from = 0; from < length; from += kSectorSize) {
            if (chance.coin()) {
                survivors.push_back(piece.part(from, std::min(kSectorSize, length - from)));
            }
        }
    }
}

void DiskState::choose(std::vector<Piece>& pieces, Survival::Kind kind, Chance& chance)
{
    using Kind = Survival::Kind;
    if (kind == Kind::Nothing || kind == Kind::Names) {
        pieces.clear();
    }
    if (pieces.empty() || kind == Kind::Everything || kind == Kind::Writes) {
        return;
    }
    const std::size_t chosen = chance.below(pieces.size());
    const auto at = pieces.begin() + static_cast<std::ptrdiff_t>(chosen);
    if (kind == Kind::AllBut) {
        pieces.erase(at);
    } else if (kind == Kind::Only) {
        pieces = {*at};
    } else if (kind == Kind::UpTo) {
        const Piece torn = *at;
        pieces.erase(at, pieces.end());
        if (torn.bytes.size() > 1) {
            pieces.push_back(torn.part(0, chance.tearing(torn.bytes.size())));
        }
    } else {
        std::vector<Piece> survivors;
        for (const Piece& piece : pieces) {
            switch (chance.below(3)) {
            case 0:
                break;
            case 1:
                survivors.push_back(piece);
                break;
            default:
                tear(piece, chance, survivors);
            }
        }
        if (chance.coin()) {
            chance.shuffle(survivors);
        }
        pieces = std::move(survivors);
    }
}

Files DiskState::afterPowerLoss(const Survival& survival) const
{
    using Kind = Survival::Kind;
    Chance chance(survival.seed);
    std::map<std::string, FileNumber> names;
    std::map<FileNumber, Bytes> contents;
    for (const auto& [path, history] : names_) {
        std::size_t chosen = chance.below(history.size());
        if (survival.kind == Kind::Everything || survival.kind == Kind::Names) {
            chosen = history.size() - 1;
        } else if (survival.kind == Kind::Nothing || survival.kind == Kind::Writes) {
            chosen = 0;
        }
        if (const std::optional<FileNumber> file = history[chosen]) {
            names[path] = *file;
            contents[*file] = files_.at(*file).certain;
        }
    }
    std::vector<Piece> pieces = piecesOf(contents);
    choose(pieces, survival.kind, chance);
    for (const Piece& piece : pieces) {
        piece.applyTo(contents.at(piece.file));
    }
    Files files;
    for (const auto& [path, file] : names) {
        files[path] = contents.at(file);
    }
    return files;
}

} // namespace jet::test
