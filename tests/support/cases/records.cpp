#include "records.hpp"

namespace cases {
namespace {

// The tokens of a line: "struct a; int32 b 1".
std::vector<std::string> parted(const Line &line) {
    std::vector<std::string> parts{""};
    for (const std::string &word : words(line, line.text)) {
        const bool ends = word.back() == ';';
        parts.back() += (parts.back().empty() ? "" : " ") + word.substr(0, word.size() - (ends ? 1 : 0));
        if (ends) {
            parts.emplace_back();
        }
    }
    return parts;
}

} // namespace

void demand(bool good, const Line &line, const char *form) {
    if (!good) {
        throw Malformed(line, std::string("expected: ") + form);
    }
}

std::uint32_t code(const Line &line, const std::string &word) {
    return static_cast<std::uint32_t>(number(line, word));
}

std::string text_of(const Line &line, const std::string &word) {
    const std::optional<std::string> text = meant(line, word);
    demand(text.has_value(), line, "a text, not null");
    return *text;
}

std::vector<std::string> texts_below(const Line &line) {
    std::vector<std::string> texts;
    for (const Line &below : line.block) {
        texts.push_back(below.text);
    }
    return texts;
}

fake::Token token_of(const Line &line, std::string_view text) {
    static const std::map<std::string, bag_token_type_td> types{{"struct", BAG_TOKEN_STRUCT_START},
                                                                {"end-struct", BAG_TOKEN_STRUCT_END},
                                                                {"array", BAG_TOKEN_ARRAY_START},
                                                                {"end-array", BAG_TOKEN_ARRAY_END},
                                                                {"end", BAG_TOKEN_END},
                                                                {"text", BAG_TOKEN_TEXT},
                                                                {"text2", BAG_TOKEN_TEXT2},
                                                                {"int8", BAG_TOKEN_INT8},
                                                                {"uint8", BAG_TOKEN_UINT8},
                                                                {"int16", BAG_TOKEN_INT16},
                                                                {"uint16", BAG_TOKEN_UINT16},
                                                                {"int32", BAG_TOKEN_INT32},
                                                                {"uint32", BAG_TOKEN_UINT32},
                                                                {"int64", BAG_TOKEN_INT64},
                                                                {"uint64", BAG_TOKEN_UINT64},
                                                                {"ipv4", BAG_TOKEN_IPV4},
                                                                {"enum", BAG_TOKEN_ENUM},
                                                                {"bool", BAG_TOKEN_BOOL}};
    const std::vector<std::string> all = words(line, text);
    demand(!all.empty(), line, "a token");
    const auto named = types.find(all[0]);
    fake::Token token;
    token.type = named != types.end() ? named->second : static_cast<bag_token_type_td>(code(line, all[0]));
    const bool is_mark = token.type >= BAG_TOKEN_ARRAY_START && token.type <= BAG_TOKEN_END;
    demand(is_mark ? all.size() <= 2 : all.size() == 3, line, "a token: TYPE NAME VALUE, struct NAME, end-struct, ...");
    token.name = all.size() > 1 ? meant(line, all[1]) : std::nullopt;
    if (token.type == BAG_TOKEN_TEXT || token.type == BAG_TOKEN_TEXT2) {
        token.text = meant(line, all[2]);
    } else if (!is_mark) {
        token.number = number(line, all[2]);
    }
    return token;
}

fake::Bag bag_of(const Line &head) {
    fake::Bag bag;
    const std::vector<std::string> named = words(head, head.text);
    if (named.size() == 2) {
        bag.type_name = named[1];
    }
    for (const Line &line : head.block) {
        const std::vector<std::string> all = words(line, line.text);
        if (all[0] == "version") {
            bag.version_major = static_cast<std::int32_t>(number(line, all.at(1)));
            bag.version_minor = static_cast<std::int32_t>(number(line, all.at(2)));
        } else if (all[0] == "header-result") {
            bag.header_result = code(line, all.at(1));
        } else if (all[0] == "init-result") {
            bag.init_result = code(line, all.at(1));
        } else if (all[0] == "token-result") {
            bag.token_results[static_cast<std::size_t>(number(line, all.at(1)))] = code(line, all.at(2));
        } else {
            for (const std::string &token : parted(line)) {
                bag.tokens.push_back(token_of(line, token));
            }
        }
    }
    return bag;
}

fake::Item item_of(const Line &head) {
    fake::Item item;
    for (const Line &line : head.block) {
        const std::vector<std::string> all = words(line, line.text);
        if (all[0] == "bag") {
            item = fake::bag_item(bag_of(line));
        } else if (all[0] == "no-data" || all[0] == "data-on-failure") {
            (all[0] == "no-data" ? item.no_data : item.data_on_failure) = true;
        } else {
            constexpr char form[] = "bag, number N, bytes TEXT, result N, length N, type N, no-data";
            demand(all.size() == 2, line, form);
            if (all[0] == "number") {
                item = fake::integer_item(static_cast<std::int32_t>(number(line, all[1])));
            } else if (all[0] == "bytes") {
                item.bytes = text_of(line, all[1]);
            } else if (all[0] == "result") {
                item.result = code(line, all[1]);
            } else if (all[0] == "length") {
                item.length = code(line, all[1]);
            } else {
                demand(all[0] == "type", line, form);
                item.updated_type = code(line, all[1]);
            }
        }
    }
    return item;
}

} // namespace cases
