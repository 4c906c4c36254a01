#include "arguments.hpp"

#include <algorithm>
#include <cstdlib>

#include "records.hpp"

namespace cases {
namespace {

constexpr char filling = '#'; // of a buffer that nothing has been written to

std::string up_to_its_end(const std::string &bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

} // namespace

Arguments::Arguments(const Line &line, std::vector<std::string> words, std::vector<std::string> expected,
                     Scenery scenery)
    : line_(line), words_(std::move(words)), expected_(std::move(expected)), scenery_(std::move(scenery)) {}

Arguments::~Arguments() {
    fake::Platform::current().keep(item_);
    std::free(item_); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): the client's contract
}

const std::string &Arguments::next() {
    demand(used_ < words_.size(), line_, "more arguments");
    return words_[used_++];
}

void Arguments::take(const char *&text) {
    const std::optional<std::string> given = meant(line_, next());
    text = nullptr;
    if (given) {
        texts_.emplace_back(*given, *given);
        text = texts_.back().first.c_str();
    }
}

void Arguments::take(char *&buffer) {
    const std::string &word = next();
    demand(word.size() > 2 && word.front() == '[' && word.back() == ']', line_, "[SIZE], [SIZE=TEXT] or [fit]");
    const std::string inside = word.substr(1, word.size() - 2);
    const std::size_t equals = inside.find('=');
    if (inside == "fit") {
        const std::string &text = expected_.at(buffers_.size());
        buffers_.emplace_back(text == "untouched" ? 20 : text_of(line_, text).size() + 1, filling);
    } else {
        const auto size = static_cast<std::size_t>(number(line_, inside.substr(0, equals)));
        buffers_.emplace_back(size, equals == std::string::npos ? filling : '\0');
    }
    if (equals != std::string::npos) {
        std::copy(inside.begin() + static_cast<std::ptrdiff_t>(equals) + 1, inside.end(), buffers_.back().begin());
    }
    buffer = buffers_.back().data();
}

void Arguments::take(const bag_token_td *&token) {
    tokens_.push_back(fake::given_token(token_of(line_, text_of(line_, next()))));
    token = &tokens_.back().token;
}

void Arguments::take(void **&item) {
    has_item_ = next() != "null";
    item = has_item_ ? &item_ : nullptr;
}

void Arguments::take(std::uint32_t *&length) {
    has_length_ = true;
    length = &length_;
}

void Arguments::finish() const {
    demand(used_ == words_.size(), line_, "fewer arguments");
}

std::string Arguments::item() const {
    return item_ == nullptr ? "null" : "\"" + std::string(static_cast<const char *>(item_), length_) + "\"";
}

std::vector<std::string> Arguments::differences() const {
    std::vector<std::string> found;
    auto expected = expected_.begin();
    const auto wanted = [&] { return expected == expected_.end() ? "" : *expected++; };
    const auto compare = [&](const std::string &is, const std::string &should_be) {
        if (is != should_be) {
            found.push_back("written is " + is + ", expected " + should_be);
        }
    };
    for (const std::vector<char> &buffer : buffers_) {
        const std::string bytes(buffer.begin(), buffer.end());
        std::string word = wanted();
        if (word == "untouched") {
            compare(bytes, std::string(bytes.size(), filling));
        } else if (word == "whole") {
            compare(bytes, text_of(line_, wanted()));
        } else if (word == "cleared") {
            std::string text = text_of(line_, wanted());
            text.resize(bytes.size(), '\0');
            compare(bytes, text);
        } else {
            compare(up_to_its_end(bytes), text_of(line_, word));
        }
    }
    if (has_item_) {
        compare(item(), wanted());
    }
    if (has_length_) {
        compare(std::to_string(length_), wanted());
    }
    demand(expected == expected_.end(), line_, "as many results as are written");
    for (const auto &[text, before] : texts_) {
        compare(text, before);
    }
    return found;
}

} // namespace cases
