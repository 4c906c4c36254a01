#include "simulator/store/file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "framework/error.hpp"

namespace ocpsm::sysdb {
namespace {

constexpr char next_file[] = "line-system.store.new";

// The last of them rises where older programs cannot read the file. A file of the first format has the same records,
// without a journal.
constexpr std::array<char, 8> magic{'l', 'i', 'n', 'e', 's', 't', 'o', '2'};
constexpr char first_format = '1';

// Numbers stand in the byte order of the machine. It lies within a sector of any disk, which is written whole or not.
struct Header {
    std::array<char, 8> magic;
    std::uint64_t length; // of the file as far as it counts, with this header
    std::uint64_t hash;   // of what follows up to there
    std::uint64_t check;  // hash of the above
};
static_assert(sizeof(Header) == 32);

// Changes are appended until they are so much longer than the state itself.
constexpr std::uint64_t spare_length = 64 << 10;

// What no file of this program exceeds, while a commit changes at most all there is to all there may be.
constexpr std::uint64_t max_length = 8 * std::uint64_t{max_store_size};

std::uint64_t check_of(const Header &header) {
    return hash_of({reinterpret_cast<const char *>(&header), offsetof(Header, check)});
}

[[noreturn]] void refuse(const std::string &message, const std::string &advice, const char *tag = "operation-failed") {
    throw Error(Error::Source::input, tag, "", message, advice);
}

// Throws for a file that another version of this program has written; false for none of its files.
bool is_own(const Header &header) {
    const char format = header.magic.back();
    if (!std::equal(magic.begin(), magic.end() - 1, header.magic.begin())) {
        return false;
    }
    if (format != magic.back() && format != first_format) {
        refuse("the line system was made by another version of this program",
               "use that version, or create a new line system");
    }
    return true;
}

std::string text_of(int error) {
    return std::generic_category().message(error);
}

// As many bytes as there are, up to `size`; none: errno.
std::optional<std::string> read_some(const Descriptor &file, std::uint64_t from, std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = pread(file.number(), bytes.data() + done, size - done, static_cast<off_t>(from + done));
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return bytes;
}

bool write_all(const Descriptor &file, std::string_view bytes, std::uint64_t at) {
    while (!bytes.empty()) {
        const ssize_t count = pwrite(file.number(), bytes.data(), bytes.size(), static_cast<off_t>(at));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        const std::size_t done = count < 0 ? 0 : static_cast<std::size_t>(count);
        bytes.remove_prefix(done);
        at += done;
    }
    return true;
}

std::string header_of(const Position &position) {
    Header header{magic, position.length, position.hash, 0};
    header.check = check_of(header);
    return {reinterpret_cast<const char *>(&header), sizeof header};
}

// As far as this user may: a superuser's command must not take a store away from its owner.
void keep_owner(const Descriptor &file, const Descriptor &old) {
    struct stat status {};
    if (old && fstat(old.number(), &status) == 0) {
        static_cast<void>(fchown(file.number(), status.st_uid, status.st_gid) == 0);
        static_cast<void>(fchmod(file.number(), status.st_mode & 07777) == 0);
    }
}

} // namespace

Descriptor::~Descriptor() {
    if (number_ >= 0) {
        close(number_);
    }
}

File::File(std::filesystem::path directory, Store::Mode mode)
    : directory_(std::move(directory)), may_be_missing_(mode == Store::Mode::create) {
    std::error_code failure;
    if (mode == Store::Mode::create) {
        std::filesystem::create_directory(directory_, failure);
        if (failure) {
            refuse("the directory " + directory_.string() + " cannot be created: " + failure.message(), "");
        }
        if (std::filesystem::exists(directory_ / store_file, failure)) {
            refuse_occupied();
        }
        return;
    }
    const auto status = std::filesystem::status(directory_, failure);
    if (status.type() == std::filesystem::file_type::not_found) {
        refuse("the directory " + directory_.string() + " does not exist", "", "data-missing");
    }
    if (status.type() == std::filesystem::file_type::none) {
        refuse("the directory " + directory_.string() + " cannot be read: " + failure.message(), "");
    }
    if (!std::filesystem::is_directory(status)) {
        refuse(directory_.string() + " is no directory", "");
    }
}

// None for whatever is no such file, with the reason in errno.
Descriptor File::open(int flags) const {
    // A pipe in its place would hold the opening up.
    Descriptor file(::open((directory_ / store_file).c_str(), flags | O_CLOEXEC | O_NONBLOCK)); // NOLINT
    struct stat status {};
    if (file && fstat(file.number(), &status) == 0 && !S_ISREG(status.st_mode)) {
        errno = ENOENT;
        return {};
    }
    return file;
}

State File::read(const State &before) const {
    const Descriptor file = open(O_RDONLY);
    if (!file) {
        if (may_be_missing_ && before.position.length == 0 && errno == ENOENT) {
            return before;
        }
        refuse_reading(errno);
    }
    if (may_be_missing_ && before.position.length == 0) {
        refuse_occupied();
    }
    // A writer may be at the header just now.
    for (int left = 10; left > 0; --left) {
        if (const auto now = position(file)) {
            return *now == before.position ? before : read_changes(file, before, *now);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    refuse_damaged("it does not begin as it was written");
}

// None when the header is not as it was written.
std::optional<Position> File::position(const Descriptor &file) const {
    const auto bytes = read_some(file, 0, sizeof(Header));
    if (!bytes) {
        refuse_reading(errno);
    }
    if (bytes->size() < sizeof(Header)) {
        refuse_damaged("the file is cut");
    }
    Header header{};
    std::memcpy(&header, bytes->data(), sizeof header);
    if (header.check != check_of(header) || !is_own(header) || header.length < sizeof header ||
        header.length > max_length) {
        return std::nullopt;
    }
    return Position{header.length, header.hash};
}

// From the changes since `before`; from all, where they do not follow on it.
State File::read_changes(const Descriptor &file, const State &before, const Position &now) const {
    const bool continues = before.position.length != 0 && now.length > before.position.length;
    const std::uint64_t from = continues ? before.position.length : sizeof(Header);
    struct stat status {};
    if (fstat(file.number(), &status) != 0) {
        refuse_reading(errno);
    }
    if (static_cast<std::uint64_t>(status.st_size) < now.length) {
        refuse_damaged("the file is cut");
    }
    const auto bytes = read_some(file, from, now.length - from);
    if (!bytes) {
        refuse_reading(errno);
    }
    Draft draft(continues ? before.tables : State{}.tables);
    if (hash_of(*bytes, continues ? before.position.hash : hash_of_nothing) == now.hash &&
        apply_changes(draft, *bytes)) {
        return {std::move(draft).take(), now};
    }
    if (continues) {
        return read_changes(file, {}, now);
    }
    refuse_damaged("its records are not what was written");
}

bool File::same_directory(const File &other) const {
    std::error_code failure;
    return directory_ == other.directory_ || std::filesystem::equivalent(directory_, other.directory_, failure);
}

Descriptor File::lock() const {
    Descriptor directory(::open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // NOLINT
    if (!directory) {
        refuse_writing(errno);
    }
    while (flock(directory.number(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            refuse_writing(errno);
        }
    }
    return directory;
}

State File::write(const State &before, Tables after, std::string_view changes) const {
    Position position{before.position.length + changes.size(), hash_of(changes, before.position.hash)};
    if (before.position.length != 0 && position.length <= spare_length + 2 * after.size) {
        append(before.position, position, changes);
    } else {
        const std::string image = image_of(after);
        position = {sizeof(Header) + image.size(), hash_of(image)};
        replace(position, image);
    }
    return {std::move(after), position};
}

void File::append(const Position &before, const Position &after, std::string_view changes) const {
    const Descriptor file = open(O_WRONLY);
    // The changes have to be safe before they count.
    if (!file || !write_all(file, changes, before.length) || fdatasync(file.number()) != 0 ||
        !write_all(file, header_of(after), 0) || fdatasync(file.number()) != 0) {
        refuse_writing(errno);
    }
}

void File::replace(const Position &after, std::string_view image) const {
    const std::filesystem::path beside = directory_ / next_file;
    // What a writer that was killed has left is overwritten.
    const Descriptor file(
        ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644)); // NOLINT
    if (file) {
        keep_owner(file, open(O_RDONLY));
    }
    if (!file || !write_all(file, header_of(after), 0) || !write_all(file, image, sizeof(Header)) ||
        fsync(file.number()) != 0 || rename(beside.c_str(), (directory_ / store_file).c_str()) != 0) {
        const int reason = errno;
        if (file) {
            unlink(beside.c_str());
        }
        refuse_writing(reason);
    }
    // So that the new name is safe too.
    const Descriptor directory(::open(directory_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // NOLINT
    if (!directory || fsync(directory.number()) != 0) {
        refuse_writing(errno);
    }
}

void File::refuse_occupied() const {
    refuse("the directory " + directory_.string() + " already holds a line system",
           "name another directory or remove this one");
}

void File::refuse_damaged(const std::string &reason) const {
    refuse("the line system in " + directory_.string() + " is damaged: " + reason,
           "restore the directory from a copy or create a new line system");
}

void File::refuse_reading(int error) const {
    if (error == ENOENT) {
        refuse("the directory " + directory_.string() + " holds no line system", "create one there first",
               "data-missing");
    }
    refuse("the line system in " + directory_.string() + " cannot be read: " + text_of(error),
           error == EACCES ? "give this user the right to read it" : "");
}

void File::refuse_writing(int error) const {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: // the limit of a process counts as the disk's
        refuse_full(text_of(error));
    case EACCES:
    case EPERM:
    case EROFS:
        refuse("the line system in " + directory_.string() + " cannot be written: " + text_of(error),
               "give this user the right to write there");
    default:
        refuse("the line system in " + directory_.string() + " cannot be used: " + text_of(error), "");
    }
}

void File::refuse_full(const std::string &reason) const {
    throw Error(Error::Source::refused, "resource-denied", "",
                "the line system in " + directory_.string() + " has no room: " + reason);
}

} // namespace ocpsm::sysdb
