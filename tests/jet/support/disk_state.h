// What is on a disk for certain, what may be, and what is found there after the power has failed.
//
// A write or a new size is certain once its file is synced, a name (of a file created, renamed or removed) once the
// folder is. Until then any of it may be on the disk and any may be lost, whatever the order of the calls was:
//   - a write survives page by page; of a page there is all, nothing, a beginning, an end, or some of its sectors, and
//     where the file was not so long before, there may be what the disk held there by chance;
//   - a path leads to what it led to at the last sync of the folder, or after any of the calls since, each path for
//     itself: a renamed file may be there under both its names, or under none.
#pragma once

#include "jet/support/disk_trace.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace jet::test {

/// Which of the things that were not synced survive.
struct Survival {
    enum class Kind {
        Nothing,
        Everything,
        Writes,  ///< all writes, no name
        Names,   ///< all names, no write
        AllBut,  ///< all pieces of writes but one
        Only,    ///< one piece of a write
        UpTo,    ///< the writes in their order up to some byte
        AnyPart, ///< each piece as chance has it, applied in the order of the calls or in any other
    };
    Kind kind = Kind::Nothing;
    std::uint64_t seed = 0; ///< for chance; the names of the last four kinds are chance's too

    [[nodiscard]] std::string describe() const;
    /// The four kinds without chance, and so many with it, the same for the same seed.
    [[nodiscard]] static std::vector<Survival> several(std::size_t byChance, std::uint64_t seed);
};

class DiskState
{
public:
    /// All of the files are on the disk for certain.
    explicit DiskState(const Files& files);

    void apply(const Event& event);
    /// Whether everything is certain.
    [[nodiscard]] bool isSettled() const;
    /// What running programs see.
    [[nodiscard]] Files seen() const { return afterPowerLoss({.kind = Survival::Kind::Everything}); }
    [[nodiscard]] Files afterPowerLoss(const Survival& survival) const;

private:
    /// A new size where there are no bytes.
    struct Change {
        std::uint64_t offset = 0;
        std::optional<Bytes> bytes;
    };
    struct StoredFile {
        Bytes certain;
        std::vector<Change> unsynced;
    };
    /// What a path led to at the last sync of the folder, and then after each call that changed it.
    using History = std::vector<std::optional<FileNumber>>;
    struct Piece;
    class Chance;

    void lead(const std::string& path, std::optional<FileNumber> file);
    [[nodiscard]] std::vector<Piece> piecesOf(const std::map<FileNumber, Bytes>& files) const;
    static void choose(std::vector<Piece>& pieces, Survival::Kind kind, Chance& chance);
    static void tear(const Piece& piece, Chance& chance, std::vector<Piece>& survivors);

    std::map<FileNumber, StoredFile> files_;
    std::map<std::string, History> names_;
};

} // namespace jet::test
