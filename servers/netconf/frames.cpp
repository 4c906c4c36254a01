#include "servers/netconf/frames.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "framework/error.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr std::string_view end_mark = "]]>]]>";
constexpr std::string_view chunk_mark = "\n#";
constexpr std::string_view last_mark = "\n##\n";
constexpr std::size_t most_digits = 10; // of the largest size that the protocol has, 4294967295
constexpr std::size_t first_digit = 2;  // of a chunk's header

[[noreturn]] void refuse(const std::string &message) {
    throw Error(Error::Source::input, "malformed-message", "", message);
}

[[noreturn]] void refuse_size() {
    throw Error(Error::Source::input, "too-big", "",
                "a message has more than " + std::to_string(max_message_size >> 20U) + " MiB");
}

} // namespace

std::optional<std::string> FrameReader::next() {
    if (!(framing_ == Framing::end_mark ? take_marked() : take_chunked())) {
        return std::nullopt;
    }
    return std::exchange(message_, {});
}

bool FrameReader::within_message() const {
    const bool begun = framing_ == Framing::end_mark ? message_.find_first_not_of(blanks) != std::string::npos
                                                     : !message_.empty() || expected_ != Expected::header;
    return begun || rest().find_first_not_of(blanks) != std::string::npos;
}

void FrameReader::feed(std::string_view bytes) {
    waiting_.erase(0, std::exchange(at_, 0));
    waiting_.append(bytes);
}

void FrameReader::append(std::size_t size) {
    message_.append(rest().substr(0, size));
    at_ += size;
}

// The mark may have come in pieces.
bool FrameReader::take_marked() {
    constexpr std::size_t most_before = end_mark.size() - 1;
    std::string seam = message_.substr(message_.size() - std::min(message_.size(), most_before));
    const std::size_t before = seam.size();
    seam.append(rest().substr(0, most_before));
    const std::size_t begun = seam.find(end_mark);
    const bool in_pieces = begun < before;
    const std::size_t end = in_pieces ? 0 : rest().find(end_mark);
    const std::size_t kept = in_pieces ? before - begun : 0;
    if (message_.size() - kept + std::min(end, rest().size()) >
        max_message_size + (end == std::string::npos ? most_before : 0)) {
        refuse_size();
    }
    append(std::min(end, rest().size()));
    if (end == std::string::npos) {
        return false;
    }
    message_.resize(message_.size() - kept);
    at_ += end_mark.size() - kept;
    return true;
}

// Blanks behind the mark of the last message, as people type them, are not held against who sends them.
bool FrameReader::take_blanks() {
    while (behind_mark_ && !rest().starts_with(chunk_mark)) {
        if (rest().size() < chunk_mark.size() && rest().find_first_not_of(blanks) == std::string_view::npos) {
            return false;
        }
        behind_mark_ = blanks.find(rest().front()) != std::string_view::npos;
        at_ += behind_mark_ ? 1 : 0;
    }
    behind_mark_ = false;
    return true;
}

bool FrameReader::take_chunked() {
    if (!take_blanks()) {
        return false;
    }
    ended_ = false;
    while (!ended_) {
        const bool taken = expected_ == Expected::header ? take_header()
                           : expected_ == Expected::size ? take_size()
                                                         : take_data();
        if (!taken) {
            return false;
        }
    }
    return true;
}

// Whether this has come; what cannot become it is refused.
bool FrameReader::has(std::string_view beginning) const {
    if (!beginning.starts_with(rest().substr(0, beginning.size()))) {
        refuse("a chunk is expected: a line end, # and its size");
    }
    return rest().size() >= beginning.size();
}

bool FrameReader::take_header() {
    if (!has(chunk_mark)) {
        return false;
    }
    if (rest().size() == first_digit) {
        return false;
    }
    if (rest()[first_digit] != '#') {
        at_ += chunk_mark.size();
        expected_ = Expected::size;
        return true;
    }
    if (!has(last_mark)) {
        return false;
    }
    if (message_.empty()) {
        refuse("a message without a chunk has ended");
    }
    at_ += last_mark.size();
    ended_ = true;
    return true;
}

bool FrameReader::take_size() {
    const std::size_t end = rest().find_first_not_of("0123456789");
    digits_.append(rest().substr(0, std::min(end, most_digits + 1)));
    const bool begins_well = digits_.empty() || digits_.front() != '0';
    if (!begins_well || digits_.size() > most_digits ||
        (end != std::string::npos && (rest()[end] != '\n' || digits_.empty()))) {
        refuse("the size of a chunk is a number from 1 to 4294967295 and a line end");
    }
    if (end == std::string::npos) {
        at_ = waiting_.size();
        return false;
    }
    at_ += end + 1;
    std::uint64_t size = 0;
    std::from_chars(digits_.data(), digits_.data() + digits_.size(), size);
    digits_.clear();
    if (size > max_message_size - message_.size()) {
        refuse_size();
    }
    left_ = static_cast<std::size_t>(size);
    expected_ = Expected::data;
    return true;
}

bool FrameReader::take_data() {
    const std::size_t taken = std::min(left_, rest().size());
    append(taken);
    left_ -= taken;
    if (left_ != 0) {
        return false;
    }
    expected_ = Expected::header;
    return true;
}

std::string framed(const std::string &message, Framing framing) {
    if (framing == Framing::end_mark) {
        return message + std::string(end_mark);
    }
    return "\n#" + std::to_string(message.size()) + "\n" + message + "\n##\n";
}

} // namespace ocpsm::netconf
