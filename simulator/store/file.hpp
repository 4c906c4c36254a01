// The file that a store is kept in.
//
// It begins with a header {what it is, the length that counts, the hash of what follows up to there, the header's own
// hash}; the changes of all commits follow, one behind the other. A commit appends its changes behind the length that
// counts, and only when they are safe a new header makes them count. When the changes have grown long, or there is no
// file yet, an image of the whole state is written beside it and renamed. So each moment has one valid state, whenever
// a writer dies or its disk is full; and since everything that counts is hashed, whatever is damaged is noticed when it
// is opened, before anything of it is answered. No page of it is mapped: a damaged file cannot end the process.
#ifndef OCPSM_SIMULATOR_STORE_FILE_HPP
#define OCPSM_SIMULATOR_STORE_FILE_HPP

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/store/records.hpp"

namespace ocpsm::sysdb {

// An open file or directory; none: -1.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_ = -1;
};

// What of the file counts. Two files with the same position hold the same.
struct Position {
    std::uint64_t length = 0; // none: no file has been read yet
    std::uint64_t hash = hash_of_nothing;

    bool operator==(const Position &) const = default;
};

struct State {
    Tables tables = Draft().take();
    Position position = {};
};

// The functions throw ocpsm::Error in the words of Store.
class File {
public:
    // Makes the directory when the store is to be created; looks at it only otherwise.
    File(std::filesystem::path directory, Store::Mode mode);

    // The state that counts now, from one that has been read before. A store that is being created is empty until its
    // first commit.
    State read(const State &before) const;

    // Whether both are of one directory.
    bool same_directory(const File &other) const;

    // Waits for the right to write, and holds it until what it returns ends.
    Descriptor lock() const;

    // Makes `after` the state that counts; `changes` lead there from `before`. Under the lock.
    State write(const State &before, Tables after, std::string_view changes) const;

    // Throws the error for a store without room.
    [[noreturn]] void refuse_full(const std::string &reason) const;

private:
    Descriptor open(int flags) const;
    std::optional<Position> position(const Descriptor &file) const;
    State read_changes(const Descriptor &file, const State &before, const Position &now) const;
    void append(const Position &before, const Position &after, std::string_view changes) const;
    void replace(const Position &after, std::string_view image) const;

    [[noreturn]] void refuse_occupied() const;
    [[noreturn]] void refuse_damaged(const std::string &reason) const;
    [[noreturn]] void refuse_reading(int error) const;
    [[noreturn]] void refuse_writing(int error) const;

    std::filesystem::path directory_;
    bool may_be_missing_;
};

} // namespace ocpsm::sysdb

#endif
