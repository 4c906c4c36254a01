#include "framework/request/xml_reader.hpp"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "framework/request/syntax.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view blanks = " \t\r\n";

// An element around all takes several top elements.
constexpr std::string_view opening = "<request>";
constexpr std::string_view closing = "</request>";

// Between namespace and name; no character of XML.
constexpr char separator = '\x01';

struct FreeParser {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};

bool is_blank(std::string_view text) {
    return text.find_first_not_of(blanks) == std::string_view::npos;
}

class XmlReader {
public:
    XmlReader(std::string_view text, std::string_view body)
        : text_(text), body_(body), parser_(XML_ParserCreateNS("UTF-8", separator)) {
        if (parser_ == nullptr) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), on_start, on_end);
        XML_SetCharacterDataHandler(parser_.get(), on_characters);
        XML_SetNamespaceDeclHandler(parser_.get(), on_namespace, on_namespace_end);
    }

    std::vector<RequestNode> read() {
        feed(opening, false);
        feed(body_, false);
        closes_ = true;
        feed(closing, true);
        return std::move(open_.front().node.children);
    }

private:
    struct Open {
        RequestNode node;
        std::string text = {};
        std::size_t begin = 0; // of its tag, in the body
    };

    void feed(std::string_view part, bool last) {
        const XML_Status status = XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()), last ? 1 : 0);
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
        if (status != XML_STATUS_OK) {
            refuse(XML_GetErrorCode(parser_.get()));
        }
    }

    // An exception does not go through the parser.
    template <typename Call>
    static void guarded(void *reader, Call call) {
        auto &self = *static_cast<XmlReader *>(reader);
        if (self.failure_ != nullptr) {
            return;
        }
        try {
            call(self);
        } catch (...) {
            self.failure_ = std::current_exception();
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    static void on_start(void *reader, const char *name, const char **attributes) {
        guarded(reader, [=](XmlReader &self) { self.start(name, attributes); });
    }
    static void on_end(void *reader, const char *) {
        guarded(reader, [](XmlReader &self) { self.end(); });
    }
    static void on_characters(void *reader, const char *text, int size) {
        guarded(reader, [=](XmlReader &self) { self.take({text, static_cast<std::size_t>(size)}); });
    }
    static void on_namespace(void *reader, const char *prefix, const char *name) {
        guarded(reader, [=](XmlReader &self) {
            self.prefixes_[prefix == nullptr ? "" : prefix].push_back(self.interned(name == nullptr ? "" : name));
        });
    }
    static void on_namespace_end(void *reader, const char *prefix) {
        guarded(reader, [=](XmlReader &self) { self.prefixes_[prefix == nullptr ? "" : prefix].pop_back(); });
    }

    void start(std::string_view name, const char **attributes) {
        Open open{named<RequestNode>(name), {}, position()};
        for (; *attributes != nullptr; attributes += 2) {
            auto attribute = named<RequestAttribute>(attributes[0]);
            attribute.value = attributes[1];
            attribute.prefixes = prefixes_in(attribute.value);
            open.node.attributes.push_back(std::move(attribute));
        }
        open_.push_back(std::move(open));
    }

    void end() {
        if (open_.size() == 1) {
            if (!closes_) {
                refuse_at_position("an element is expected");
            }
            return;
        }
        Open closed = std::move(open_.back());
        open_.pop_back();
        closed.node.form = ValueForm::empty_element;
        if (!is_blank(closed.text)) {
            closed.node.form = ValueForm::text;
            closed.node.value_namespace = namespace_in(closed.text);
            closed.node.value = std::move(closed.text);
        }
        closed.node.children.shrink_to_fit();
        open_.back().node.children.push_back(std::move(closed.node));
    }

    void take(std::string_view characters) {
        if (open_.size() == 1 && !is_blank(characters)) {
            refuse_at_position("an element is expected");
        }
        open_.back().text.append(characters);
    }

    // ---- names ----

    const NamespaceName &interned(std::string_view name) {
        return names_.try_emplace(std::string(name), name).first->second;
    }

    template <typename Node>
    Node named(std::string_view name) {
        const std::size_t end = name.find(separator);
        Node node{};
        std::string_view local = name;
        if (end != std::string_view::npos) {
            node.namespace_uri = interned(name.substr(0, end));
            local = name.substr(end + 1);
        }
        if constexpr (std::is_same_v<Node, RequestNode>) {
            node.tag = local;
        } else {
            node.name = local;
        }
        return node;
    }

    // Each once.
    std::vector<std::pair<std::string, NamespaceName>> prefixes_in(std::string_view value) const {
        constexpr std::string_view ends = " \t\r\n/[]()|@'\"=<>!+*,:";
        std::map<std::string_view, NamespaceName> found;
        for (std::size_t colon = value.find(':'); colon != std::string_view::npos; colon = value.find(':', colon + 1)) {
            const std::string_view before = value.substr(0, colon);
            const std::string_view prefix = before.substr(before.find_last_of(ends) + 1);
            const auto declared = prefixes_.find(prefix);
            if (!prefix.empty() && declared != prefixes_.end() && !declared->second.empty()) {
                found.emplace(prefix, declared->second.back());
            }
        }
        return {found.begin(), found.end()};
    }

    NamespaceName namespace_in(std::string_view value) const {
        value.remove_prefix(value.find_first_not_of(blanks));
        const std::size_t colon = value.find(':');
        const auto declared =
            colon == std::string_view::npos ? prefixes_.end() : prefixes_.find(value.substr(0, colon));
        return declared == prefixes_.end() || declared->second.empty() ? NamespaceName() : declared->second.back();
    }

    // ---- refusals ----

    // Where the parser stands, in the body.
    std::size_t position() const {
        auto at = static_cast<std::size_t>(std::max<XML_Index>(XML_GetCurrentByteIndex(parser_.get()), 0));
        at = std::min(at - std::min(at, opening.size()), body_.size());
        return at - (body_.substr(0, at).ends_with("</") ? 2 : 0); // it counts from the name of a wrong end
    }

    [[noreturn]] void refuse_here(const std::string &message) const {
        refuse_at(text_, text_.size() - body_.size() + position(), message);
    }

    [[noreturn]] void refuse_at_position(const std::string &expected) const {
        refuse_here(expected + ", but " + found_at(body_, position()));
    }

    // The name of an open element as it was written.
    std::string open_name() const {
        const std::string_view tag = body_.substr(open_.back().begin + 1);
        return one_line(tag.substr(0, tag.find_first_of(" \t\r\n/>")));
    }

    [[noreturn]] void refuse(XML_Error code) const {
        const std::string_view rest = body_.substr(position());
        switch (code) {
        case XML_ERROR_NO_MEMORY:
            throw std::bad_alloc();
        case XML_ERROR_TAG_MISMATCH:
            refuse_at_position(open_.size() == 1 ? "an element is expected" : "</" + open_name() + "> is expected");
        case XML_ERROR_UNCLOSED_CDATA_SECTION:
            refuse_at_position("]]> is expected");
        case XML_ERROR_UNCLOSED_TOKEN:
        case XML_ERROR_PARTIAL_CHAR:
            refuse_here(end_of(rest) + " is expected at the end of what begins here, but the request ends");
        case XML_ERROR_UNDEFINED_ENTITY:
            refuse_at_position("&amp;, &lt;, &gt;, &quot;, &apos; or a number, &#...;, is expected");
        case XML_ERROR_BAD_CHAR_REF:
            refuse_at_position("the number of a character is expected");
        case XML_ERROR_UNBOUND_PREFIX:
            refuse_here("a declaration of the prefix is expected (xmlns:PREFIX=\"NAMESPACE\"), there is none");
        case XML_ERROR_DUPLICATE_ATTRIBUTE:
            refuse_here("another attribute is expected, this one stands twice");
        case XML_ERROR_INVALID_TOKEN:
            refuse_at_position(expected_token(rest) + " is expected");
        default:
            refuse_at_position(std::string("well-formed XML is expected (") + XML_ErrorString(code) + ")");
        }
    }

    static std::string end_of(std::string_view markup) {
        return markup.starts_with("<!--") ? "-->" : markup.starts_with("<?") ? "?>" : ">";
    }

    // At a character with which nothing can go on.
    std::string expected_token(std::string_view rest) const {
        const std::string_view before = body_.substr(0, position());
        const unsigned first = rest.empty() ? 0 : static_cast<unsigned char>(rest.front());
        if (first >= 0x80 && !is_utf8(rest.substr(0, first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2))) {
            return "UTF-8";
        }
        const std::size_t begun = before.find_last_of("<>");
        if (begun == std::string_view::npos || before[begun] == '>') {
            return before.ends_with('&') ? "an entity such as &amp;" : "a character of XML";
        }
        return begun + 1 == before.size() ? "a name" : "NAME=\"VALUE\", /> or >";
    }

    std::string_view text_;
    std::string_view body_;
    std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
    std::vector<Open> open_;                                                  // the one around all first
    std::map<std::string, std::vector<NamespaceName>, std::less<>> prefixes_; // what each stands for, innermost last
    std::unordered_map<std::string, NamespaceName> names_;
    bool closes_ = false;
    std::exception_ptr failure_;
};

} // namespace

std::vector<RequestNode> read_xml(std::string_view text, std::string_view body) {
    return XmlReader(text, body).read();
}

} // namespace ocpsm::framework
