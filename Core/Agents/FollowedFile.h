#pragma once

#include <cstdint>
#include <optional>

namespace vespra {

/// What a regular file is, without its content.
struct FileFacts {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0; // bytes

    bool operator==(const FileFacts&) const = default;
    bool isSameFile(const FileFacts& other) const { return device == other.device && inode == other.inode; }
};

/// How far a file that others append to has been read.
class FollowedFile {
public:
    /// Read of a file that is met for the first time, or that has grown too much: its end.
    static constexpr std::uint64_t tail = 64 * 1024; // bytes
    /// The most that is read at once.
    static constexpr std::uint64_t limit = 256 * 1024; // bytes

    struct Piece {
        std::uint64_t from;
        std::uint64_t length;
        /// It does not follow what was read before: whoever reads begins anew, inside a line unless `from` is 0.
        bool isFresh;
        /// It only leaves something out of the same file.
        bool isSkip = false;

        bool operator==(const Piece&) const = default;
    };

    /// What is to be read next; absent while there is nothing new.
    std::optional<Piece> next(const FileFacts& now) const
    {
        const bool isKnown = facts_ && facts_->isSameFile(now) && now.size >= facts_->size;
        if (isKnown && now.size - facts_->size <= limit)
            return now.size == facts_->size
                ? std::nullopt
                : std::optional{Piece{.from = facts_->size, .length = now.size - facts_->size, .isFresh = false}};
        const auto from = now.size > tail ? now.size - tail : 0;
        return Piece{.from = from, .length = now.size - from, .isFresh = true, .isSkip = isKnown};
    }

    /// `count` bytes of `piece` have been read.
    void didRead(const FileFacts& now, const Piece& piece, std::uint64_t count)
    {
        facts_ = now;
        facts_->size = piece.from + count;
    }

private:
    /// With the size up to which it has been read.
    std::optional<FileFacts> facts_;
};

} // namespace vespra
