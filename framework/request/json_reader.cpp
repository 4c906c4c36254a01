#include "framework/request/json_reader.hpp"

#include <libyang/libyang.h>
#include <rapidjson/error/error.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>

#include "framework/models/models.hpp"
#include "framework/request/syntax.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

// The module of NETCONF's operations, by its name and by its prefix.
bool names_netconf(std::string_view module) {
    return module == "ietf-netconf" || module == "nc";
}

NamespaceName namespace_of_module(const std::string &name) {
    if (names_netconf(name)) {
        return netconf_namespace;
    }
    const lys_module *module = ly_ctx_get_module_implemented(models::Schema::openconfig().context(), name.c_str());
    return module == nullptr ? name : module->ns;
}

// Metadata, until the node that it is about is known.
struct Metadata {
    NamespaceName namespace_uri; // of that node
    std::string tag;             // of that node; empty: the object around it
    std::vector<RequestAttribute> attributes = {};
};

// Puts metadata on the nodes that they are about, the first of that name.
void settle(std::vector<Metadata> all, std::vector<RequestNode> &siblings) {
    if (all.empty()) {
        return;
    }
    const auto name_of = [](const auto &node) { return node.namespace_uri.str() + ":" + node.tag; };
    std::unordered_map<std::string, std::size_t> positions;
    for (std::size_t index = 0; index < siblings.size(); ++index) {
        positions.try_emplace(name_of(siblings[index]), index);
    }
    for (Metadata &metadata : all) {
        const auto [position, alone] = positions.try_emplace(name_of(metadata), siblings.size());
        if (alone) {
            siblings.push_back({metadata.tag, metadata.namespace_uri});
        }
        std::move(metadata.attributes.begin(), metadata.attributes.end(),
                  std::back_inserter(siblings[position->second].attributes));
    }
}

// The parser's own does not look whether there is memory. What it hands out is owned by the parser.
// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
struct Allocator {
    static constexpr bool kNeedFree = true;

    void *Malloc(std::size_t size) { return Realloc(nullptr, 0, size); }
    void *Realloc(void *memory, std::size_t, std::size_t size) {
        if (size == 0) {
            std::free(memory);
            return nullptr;
        }
        void *grown = std::realloc(memory, size);
        if (grown == nullptr) {
            throw std::bad_alloc();
        }
        return grown;
    }
    static void Free(void *memory) { std::free(memory); }
};
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)

// Takes what the parser finds; its functions bear the names that the parser calls, and always want more.
class JsonReader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, JsonReader> {
public:
    JsonReader(std::string_view text, std::string_view body)
        : text_(text), body_(body), stream_(body.data(), body.size()) {}

    std::vector<RequestNode> read() {
        constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                                   rapidjson::kParseNumbersAsStringsFlag;
        rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Allocator> reader;
        const rapidjson::ParseResult result = reader.Parse<flags>(stream_, *this);
        if (result.IsError()) {
            refuse(result.Code(), result.Offset());
        }
        return std::move(top_.node.children);
    }

    bool Null() { return value(ValueForm::json_null, std::nullopt); }
    bool Bool(bool truth) { return value(ValueForm::json_boolean, truth ? "true" : "false"); }
    bool RawNumber(const char *text, rapidjson::SizeType size, bool) {
        return value(ValueForm::json_number, std::string(text, size));
    }
    bool String(const char *text, rapidjson::SizeType size, bool) {
        return value(ValueForm::json_string, std::string(text, size));
    }

    bool Key(const char *text, rapidjson::SizeType size, bool) {
        std::string_view name(text, size);
        const bool about = innermost().level != Level::metadata && name.starts_with('@');
        name.remove_prefix(about ? 1 : 0);
        const std::size_t colon = name.find(':');
        member_ = {{}, std::string(name.substr(colon + 1)), about};
        if (colon != std::string_view::npos) {
            member_.namespace_uri = known(name.substr(0, colon));
        } else if (innermost().level == Level::metadata) {
            refuse_taken("metadata needs the name of its module, as in \"ietf-netconf:operation\"");
        } else {
            member_.namespace_uri = innermost().node.namespace_uri;
        }
        if (open_.size() == 1 && (about || member_.namespace_uri.empty())) {
            refuse_taken(about ? "metadata of a top node stands inside of it"
                               : "a top member needs the name of its module, as in \"MODULE:" + one_line(name) + "\"");
        }
        return true;
    }

    bool StartObject() {
        if (open_.empty()) {
            open_.push_back(std::move(top_));
            return true;
        }
        const Level level = innermost().level;
        if (level == Level::metadata) {
            refuse_here("the value of metadata is no object");
        }
        Open open;
        if (level == Level::object && member_.is_metadata) {
            open.level = Level::metadata;
        }
        open.node = {name().tag, name().namespace_uri};
        open.node.form = level == Level::array ? ValueForm::json_entry : ValueForm::json_object;
        open_.push_back(std::move(open));
        return true;
    }

    bool EndObject(rapidjson::SizeType) {
        Open closed = std::move(open_.back());
        open_.pop_back();
        if (closed.level == Level::metadata) {
            Metadata metadata{closed.node.namespace_uri, closed.node.tag, std::move(closed.node.attributes)};
            if (metadata.tag.empty()) {
                open_.back().node.attributes = std::move(metadata.attributes);
            } else {
                open_.back().metadata.push_back(std::move(metadata));
            }
            return true;
        }
        settle(std::move(closed.metadata), closed.node.children);
        closed.node.children.shrink_to_fit();
        if (open_.empty()) {
            top_ = std::move(closed);
        } else {
            add(std::move(closed.node));
        }
        return true;
    }

    bool StartArray() {
        if (innermost().level != Level::object) {
            refuse_here("an array has values or objects");
        }
        if (member_.is_metadata) {
            refuse_here("metadata is an object");
        }
        Open open;
        open.level = Level::array;
        open.node = {member_.tag, member_.namespace_uri};
        open_.push_back(std::move(open));
        return true;
    }

    bool EndArray(rapidjson::SizeType count) {
        RequestNode array = std::move(open_.back().node);
        open_.pop_back();
        if (count == 0) {
            array.form = ValueForm::json_no_entries;
            add(std::move(array));
        }
        return true;
    }

private:
    enum class Level { object, array, metadata };

    // An object that is being read; an array only names its items, metadata gathers attributes.
    struct Open {
        Level level = Level::object;
        RequestNode node = {};
        std::vector<Metadata> metadata = {}; // of its children
    };

    struct Member {
        NamespaceName namespace_uri;
        std::string tag;
        bool is_metadata = false;
    };

    struct Name {
        const std::string &tag;
        const NamespaceName &namespace_uri;
    };

    Open &innermost() { return open_.back(); }

    // Of the value that begins: the member's, or that of the array around it.
    Name name() {
        const RequestNode &around = innermost().node;
        return innermost().level == Level::array ? Name{around.tag, around.namespace_uri}
                                                 : Name{member_.tag, member_.namespace_uri};
    }

    bool value(ValueForm form, std::optional<std::string> text) {
        const Level level = innermost().level;
        if (level == Level::metadata) {
            innermost().node.attributes.push_back({member_.namespace_uri, member_.tag, text.value_or("null")});
            return true;
        }
        if (level == Level::object && member_.is_metadata) {
            refuse_taken("metadata is an object");
        }
        RequestNode node{name().tag, name().namespace_uri, std::move(text)};
        node.form = level == Level::object         ? form
                    : form == ValueForm::json_null ? ValueForm::json_empty
                                                   : ValueForm::json_item;
        add(std::move(node));
        return true;
    }

    // To the innermost object: items are its children.
    void add(RequestNode node) {
        auto object = open_.rbegin();
        while (object->level != Level::object) {
            ++object;
        }
        object->node.children.push_back(std::move(node));
    }

    const NamespaceName &known(std::string_view module) {
        const auto [name, is_new] = namespaces_.try_emplace(std::string(module));
        if (is_new) {
            name->second = namespace_of_module(name->first);
        }
        return name->second;
    }

    // ---- refusals ----

    [[noreturn]] void refuse_in_body(std::size_t at, const std::string &message) const {
        refuse_at(text_, text_.size() - body_.size() + at, message);
    }
    // At the bracket that the parser is about to take.
    [[noreturn]] void refuse_here(const std::string &message) const { refuse_in_body(stream_.Tell(), message); }

    // At the value, or the name of a member, that the parser has taken.
    [[noreturn]] void refuse_taken(const std::string &message) const {
        const std::size_t last = stream_.Tell() - 1;
        refuse_in_body(body_[last] == '"' ? body_.rfind('"', last - 1) : body_.find_last_of(":,[ \t\r\n", last) + 1,
                       message);
    }

    [[noreturn]] void refuse(rapidjson::ParseErrorCode code, std::size_t at) const {
        const std::size_t found = std::min(body_.find_first_not_of(" \t\r\n", at), body_.size());
        const std::string expected = expected_at(code);
        refuse_in_body(found, expected + " expected, but " + found_at(body_, found));
    }

    static std::string expected_at(rapidjson::ParseErrorCode code) {
        switch (code) {
        case rapidjson::kParseErrorObjectMissName:
            return "the name of a member, in quotes, is";
        case rapidjson::kParseErrorObjectMissColon:
            return "a colon is";
        case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
            return "a comma or } is";
        case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
            return "a comma or ] is";
        case rapidjson::kParseErrorDocumentRootNotSingular:
            return "nothing more is";
        case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
            return "four hexadecimal digits behind \\u are";
        case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
            return "the other half of the character, \\u..., is";
        case rapidjson::kParseErrorStringEscapeInvalid:
            return "one of \" \\ / b f n r t u behind \\ is";
        case rapidjson::kParseErrorStringMissQuotationMark:
            return "the quote at the end of a string is";
        case rapidjson::kParseErrorStringInvalidEncoding:
            return "UTF-8 without control characters is";
        case rapidjson::kParseErrorNumberTooBig:
            return "a smaller number is";
        case rapidjson::kParseErrorNumberMissFraction:
        case rapidjson::kParseErrorNumberMissExponent:
            return "a digit is";
        default:
            return "a value is";
        }
    }

    std::string_view text_;
    std::string_view body_;
    rapidjson::MemoryStream stream_;
    Open top_; // holds the top nodes, behind the parsing
    std::vector<Open> open_;
    Member member_; // that was named last
    std::unordered_map<std::string, NamespaceName> namespaces_;
};

} // namespace

std::vector<RequestNode> read_json(std::string_view text, std::string_view body) {
    return JsonReader(text, body).read();
}

} // namespace ocpsm::framework
