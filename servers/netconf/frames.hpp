// How messages of NETCONF follow each other on a transport (RFC 6242, 4).
#ifndef OCPSM_SERVERS_NETCONF_FRAMES_HPP
#define OCPSM_SERVERS_NETCONF_FRAMES_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ocpsm::netconf {

// The end of a message, or chunks with their sizes.
enum class Framing { end_mark, chunked };

inline constexpr std::size_t max_message_size = std::size_t{16} << 20; // bytes

// Cuts what comes in into messages. It begins with end marks. Memory: one message, and what was fed last.
class FrameReader {
public:
    // Of the messages that begin behind what next() has returned.
    void use(Framing framing) {
        framing_ = framing;
        behind_mark_ = framing == Framing::chunked;
    }
    Framing framing() const { return framing_; }

    void feed(std::string_view bytes);

    // The next message that is whole. Nothing: more bytes are needed. Throws Error (input): malformed-message for a
    // frame that is none, too-big for a message of more than max_message_size; nothing can be read behind that.
    std::optional<std::string> next();

    // Whether something has come of a message that is not whole.
    bool within_message() const;

private:
    enum class Expected { header, size, data };

    bool take_marked();
    bool take_blanks();
    bool take_chunked();
    bool take_header();
    bool take_size();
    bool take_data();
    bool has(std::string_view beginning) const;
    void append(std::size_t size);
    std::string_view rest() const { return std::string_view(waiting_).substr(at_); }

    Framing framing_ = Framing::end_mark;
    std::string waiting_;
    std::size_t at_ = 0;  // what stands before has been taken
    std::string message_; // of the message that is being read
    Expected expected_ = Expected::header;
    std::string digits_;       // of the size of a chunk
    std::size_t left_ = 0;     // of a chunk
    bool behind_mark_ = false; // nothing has come since chunks are expected
    bool ended_ = false;       // the end of the chunks stood there
};

// A message, or an answer, as it goes out.
std::string framed(const std::string &message, Framing framing);

} // namespace ocpsm::netconf

#endif
