#include "framework/request/syntax.hpp"

#include <algorithm>
#include <array>
#include <string>

#include "framework/error.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

[[noreturn]] void refuse(const std::string &tag, const std::string &message, const std::string &advice) {
    throw Error(Error::Source::input, tag, "", message, advice);
}

void check_limit(std::size_t count, std::size_t limit, const char *what, const char *unit, const char *advice) {
    if (count > limit) {
        refuse("too-big", what + std::to_string(limit) + unit, advice);
    }
}

void check_name(std::size_t size) {
    check_limit(size, max_name_size, "a name or an attribute of the request has more than ", " bytes", "shorten it");
}

/*
 * What a request has, counted while it is scanned. A level is an element, or an object of JSON with the arrays in it:
 * their items are siblings.
 */
class Count {
public:
    void enter(bool metadata = false) {
        check_limit(depth_ + 1, max_request_depth, "the request is nested deeper than ", " levels",
                    "the model needs eight");
        levels_.at(++depth_) = {0, metadata};
    }
    void leave() { --depth_; }
    std::size_t depth() const { return depth_; }

    // A JSON array: its items count for the object around it, those of metadata for themselves.
    void enter_array(bool metadata) {
        const std::size_t children = levels_.at(depth_).children;
        enter(metadata);
        levels_.at(depth_).children = metadata ? 0 : children;
    }
    void leave_array() {
        const Level array = levels_.at(depth_);
        leave();
        if (!array.metadata) {
            levels_.at(depth_).children = array.children;
        }
    }
    bool in_metadata() const { return levels_.at(depth_).metadata; }

    // A child of the current level.
    void add_child() {
        Level &level = levels_.at(depth_);
        ++level.children;
        if (level.metadata) {
            add_attributes(1, level.children);
            return;
        }
        check_limit(level.children, max_children, "an element of the request has more than ", " children",
                    "send it in pieces");
        check_limit(++elements_, max_elements, "the request has more than ", " elements", "send it in pieces");
    }

    void add_attributes(std::size_t added, std::size_t of_one) {
        check_limit(of_one, max_attributes_of_one, "an element of the request has more than ", " attributes",
                    "an operation is all that is known");
        attributes_ += added;
        check_limit(attributes_, max_attributes, "the request has more than ", " attributes", "send it in pieces");
    }

    void declare_namespace(std::size_t size) {
        ++namespaces_;
        longest_namespace_ = std::max(longest_namespace_, size);
    }

    // A value in which so many prefixes may stand; the namespace without a prefix is always kept.
    void add_value(std::size_t prefixes) {
        constexpr std::size_t overhead = 128;
        namespace_use_ += (1 + std::min(prefixes, namespaces_)) * (longest_namespace_ + overhead);
        check_limit(namespace_use_ >> 20U, max_namespace_use >> 20U, "the values of the request bring along more than ",
                    " MiB of namespace names", "send it in pieces");
    }

private:
    struct Level {
        std::size_t children;
        bool metadata;
    };
    std::array<Level, max_request_depth + 2> levels_{};
    std::size_t depth_ = 0;
    std::size_t elements_ = 0;
    std::size_t attributes_ = 0;
    std::size_t namespaces_ = 0;
    std::size_t longest_namespace_ = 0;
    std::size_t namespace_use_ = 0;
};

// The position behind the first `end` at or after `from`; the end of the text where there is none.
std::size_t behind(std::string_view text, std::size_t from, std::string_view end) {
    const std::size_t at = text.find(end, from);
    return at == std::string_view::npos ? text.size() : at + end.size();
}

// How many prefixes may stand in a text: colons, and what may stand for one.
std::size_t prefixes_in(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return c == ':' || c == '&'; }));
}

// The position behind the tag that begins at `from`: a ">" in a quoted attribute does not end it. The end of the text
// where it has no end.
std::size_t behind_tag(std::string_view text, std::size_t from, Count &count) {
    const std::size_t name_end = text.find_first_of(" \t\r\n/>", from + 1);
    check_name(std::min(name_end, text.size()) - from - 1);
    std::size_t attributes = 0;
    std::size_t begin = name_end; // of what is between two quotes
    for (std::size_t at = name_end; at < text.size(); ++at) {
        if (text[at] == '>') {
            check_name(at - begin);
            return at + 1;
        }
        if (text[at] != '"' && text[at] != '\'') {
            continue;
        }
        const std::string_view name = text.substr(begin, at - begin);
        const std::size_t end = text.find(text[at], at + 1);
        if (end == std::string_view::npos) {
            break;
        }
        const std::string_view value = text.substr(at + 1, end - at - 1);
        check_name(name.size());
        check_name(value.size());
        count.add_attributes(1, ++attributes);
        if (name.find("xmlns") != std::string_view::npos) {
            count.declare_namespace(value.size());
        }
        count.add_value(prefixes_in(value));
        begin = end + 1;
        at = end;
    }
    return text.size();
}

class XmlScan {
public:
    // `text` ends in `body`.
    XmlScan(std::string_view text, std::string_view body) : whole_(text), text_(body) {}

    void run() {
        std::size_t at = text_.find('<');
        while (at != std::string_view::npos) {
            const std::size_t end = behind_markup(at);
            at = text_.find('<', end);
            take_characters(end, at);
        }
    }

private:
    void take_characters(std::size_t begin, std::size_t end) {
        const std::string_view characters = text_.substr(begin, std::min(end, text_.size()) - begin);
        has_characters_ = has_characters_ || !characters.empty();
        prefixes_ += prefixes_in(characters);
    }

    std::size_t behind_markup(std::size_t at) {
        const std::string_view rest = text_.substr(at);
        if (rest.starts_with("<!--")) {
            return behind(text_, at + 4, "-->");
        }
        if (rest.starts_with("<![CDATA[")) {
            const std::size_t end = behind(text_, at, "]]>");
            take_characters(at, end);
            return end;
        }
        if (rest.starts_with("<!")) {
            refuse_at(whole_, whole_.size() - text_.size() + at, "a document type declaration is not allowed",
                      "leave it out");
        }
        if (rest.starts_with("<?")) {
            return behind(text_, at, "?>");
        }
        const std::size_t end = rest.starts_with("</") ? leave(at) : enter(at);
        has_characters_ = false;
        prefixes_ = 0;
        return end;
    }

    std::size_t enter(std::size_t at) {
        count_.add_child();
        const std::size_t end = behind_tag(text_, at, count_);
        is_leaf_ = text_[end - 2] != '/';
        if (is_leaf_) {
            count_.enter();
        }
        return end;
    }

    std::size_t leave(std::size_t at) {
        const std::size_t end = behind(text_, at, ">");
        if (count_.depth() == 0) {
            return text_.size();
        }
        count_.leave();
        if (is_leaf_ && has_characters_) {
            count_.add_value(prefixes_);
        }
        is_leaf_ = false;
        return end;
    }

    std::string_view whole_;
    std::string_view text_;
    Count count_;
    bool is_leaf_ = false;        // nothing but characters has come since the last element began
    bool has_characters_ = false; // since the last tag
    std::size_t prefixes_ = 0;    // in them
};

// The position behind the string whose opening quote is at `from`; the end of the text where it has no end.
std::size_t behind_string(std::string_view text, std::size_t from) {
    for (std::size_t i = from + 1; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == '"') {
            return i + 1;
        }
    }
    return text.size();
}

// A JSON text: its brackets and commas tell what it has, wherever they stand.
class JsonScan {
public:
    explicit JsonScan(std::string_view text) : text_(text) {}

    void run() {
        while (at_ < text_.size()) {
            step();
            if (count_.depth() == 0) {
                break;
            }
        }
    }

private:
    void step() {
        const char c = text_[at_];
        if (c == '"') {
            take_string();
            return;
        }
        ++at_;
        if (c == '{' || c == '[') {
            open(c == '[');
        } else if (c == '}' || c == ']') {
            close();
        } else if (c == ',') {
            count_.add_child();
        }
    }

    void take_string() {
        const std::size_t end = behind_string(text_, at_);
        const std::size_t next = text_.find_first_not_of(blanks, end);
        if (next != std::string_view::npos && text_[next] == ':') {
            check_name(end - at_ - 2);
            annotates_ = text_[at_ + 1] == '@';
        }
        at_ = end;
    }

    void open(bool array) {
        const bool metadata = annotates_ || (arrays_.at(count_.depth()) && count_.in_metadata());
        if (array) {
            count_.enter_array(metadata);
        } else {
            count_.enter(metadata);
        }
        arrays_.at(count_.depth()) = array;
        annotates_ = false;
        const std::size_t next = text_.find_first_not_of(blanks, at_);
        if (next != std::string_view::npos && text_[next] != '}' && text_[next] != ']') {
            count_.add_child();
        }
    }

    // The text begins with an opening bracket, and the scan ends when it is closed.
    void close() {
        if (arrays_.at(count_.depth())) {
            count_.leave_array();
        } else {
            count_.leave();
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool annotates_ = false; // the last member's name is one of metadata
    std::array<bool, max_request_depth + 2> arrays_{};
    Count count_;
};

bool skip_comment(std::string_view &text) noexcept {
    const bool comment = text.starts_with("<!--");
    if (!comment && !text.starts_with("<?")) {
        return false;
    }
    const std::string_view end = comment ? "-->" : "?>";
    const std::size_t at = text.find(end, comment ? 4 : 2);
    if (at == std::string_view::npos) {
        return false;
    }
    text.remove_prefix(at + end.size());
    return true;
}

void skip_blanks(std::string_view &text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

} // namespace

Opening opening_of(std::string_view text) noexcept {
    if (text.starts_with(byte_order_mark)) {
        text.remove_prefix(byte_order_mark.size());
    }
    do {
        skip_blanks(text);
    } while (skip_comment(text));
    Opening opening{std::nullopt, {}, text};
    if (text.starts_with('{')) {
        opening.syntax = Syntax::json;
    } else if (text.starts_with('<')) {
        opening.syntax = Syntax::xml;
        const std::string_view name = text.substr(1, std::min(text.find_first_of(" \t\r\n/>"), text.size()) - 1);
        opening.element = name.substr(name.find(':') + 1);
    }
    return opening;
}

std::string_view behind_first_tag(std::string_view text) noexcept {
    while (true) {
        text.remove_prefix(std::min(text.find_first_of(">\"'"), text.size()));
        if (text.empty() || text.front() == '>') {
            return text.substr(std::min<std::size_t>(1, text.size()));
        }
        const std::size_t end = text.find(text.front(), 1); // of an attribute's value
        text.remove_prefix(std::min(end, text.size() - 1) + 1);
    }
}

void refuse_at(std::string_view text, std::size_t at, const std::string &message, const std::string &advice) {
    const std::string_view before = text.substr(0, at);
    const std::size_t line_begin = before.rfind('\n') + 1; // 0 in the first line
    const auto begins_character = [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; };
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const auto column =
        1 + std::count_if(before.begin() + static_cast<std::ptrdiff_t>(line_begin), before.end(), begins_character);
    refuse("malformed-message", "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message,
           advice);
}

std::string found_at(std::string_view text, std::size_t at) {
    constexpr std::string_view in_words = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._:";
    if (at >= text.size()) {
        return "the request ends";
    }
    const std::string_view rest = text.substr(at);
    const std::size_t begin = rest.starts_with("</") ? 2 : 0;
    std::size_t end = std::min(rest.find_first_not_of(in_words, begin), rest.size());
    if (end == 0) { // a single character
        do {
            ++end;
        } while (end < rest.size() && (static_cast<unsigned char>(rest[end]) & 0xc0U) == 0x80U);
    }
    return "'" + one_line(rest.substr(0, end), 30) + "' stands there";
}

RequestText inspect(std::string_view text) {
    if (text.size() > max_request_size) {
        refuse("too-big", "the request has more than " + std::to_string(max_request_size >> 20U) + " MiB",
               "send it in pieces");
    }
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
        refuse_at(text, zero, "a byte 0 is not allowed", "leave it out");
    }
    const Opening opening = opening_of(text);
    if (!opening.syntax) {
        refuse("malformed-message",
               opening.body.empty() ? "the request is empty" : "the request is neither XML nor JSON",
               "an XML request begins with <, a JSON request with {");
    }
    if (*opening.syntax == Syntax::xml) {
        XmlScan(text, opening.body).run();
    } else {
        JsonScan(opening.body).run();
    }
    return {*opening.syntax, opening.body};
}

} // namespace ocpsm::framework
