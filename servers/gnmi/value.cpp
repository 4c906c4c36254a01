#include "servers/gnmi/value.hpp"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_set>

#include "servers/gnmi/refusal.hpp"

namespace ocpsm::gnmi {
namespace {

using Json = rapidjson::Value;
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr unsigned max_decimal_digits = 18; // of a decimal64, behind the point (RFC 7950, 9.3.4)

Refusal invalid(const std::string &message, const std::string &path) {
    return {grpc::StatusCode::INVALID_ARGUMENT, message, path};
}

bool is_integer(const ModelNode &leaf) {
    return leaf.type == "uint32" || leaf.type == "uint64" || leaf.type == "int32";
}

bool is_number(const ModelNode &leaf) {
    return is_integer(leaf) || leaf.type == "decimal64";
}

// ---- out ----

std::string_view without_module(std::string_view value) {
    return value.substr(value.find(':') + 1);
}

// RFC 7951, 6.1: numbers of more than 32 bits are strings.
bool is_bare(const ModelNode &leaf, bool ietf) {
    return leaf.type == "boolean" || leaf.type == "uint32" || leaf.type == "int32" || (!ietf && is_number(leaf));
}

void write_scalar(const ModelNode &leaf, std::string_view value, bool ietf, Writer &writer) {
    if (is_bare(leaf, ietf)) {
        writer.RawValue(value.data(), value.size(), rapidjson::kNumberType);
        return;
    }
    const std::string_view text = leaf.type == "identityref" && !ietf ? without_module(value) : value;
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string json_scalar(const ModelNode &leaf, std::string_view value, bool ietf) {
    rapidjson::StringBuffer text;
    Writer writer(text);
    write_scalar(leaf, value, ietf, writer);
    return {text.GetString(), text.GetSize()};
}

void write_scalar_message(const ModelNode &leaf, const std::string &value, messages::TypedValue &message) {
    if (leaf.type == "boolean") {
        message.set_bool_val(value == "true");
    } else if (leaf.type == "int32") {
        message.set_int_val(std::stoll(value));
    } else if (is_integer(leaf)) {
        message.set_uint_val(std::stoull(value));
    } else if (leaf.type == "decimal64") {
        double number = 0;
        std::from_chars(value.data(), value.data() + value.size(), number);
        message.set_double_val(number);
    } else {
        message.set_string_val(leaf.type == "identityref" ? std::string(without_module(value)) : value);
    }
}

// Writes leaves one after the other, and opens and closes what is around them.
class Document {
public:
    Document(std::size_t depth, bool ietf) : depth_(depth), ietf_(ietf) { writer_.StartObject(); }

    void add(const LeafPlace &place, const std::string &value) {
        const Steps &steps = place.steps;
        std::size_t common = 0;
        while (common < open_.size() && open_[common] == steps[depth_ + common]) {
            ++common;
        }
        close(common, &steps[depth_ + common]);
        for (std::size_t at = depth_ + open_.size(); at + 1 < steps.size(); ++at) {
            open(steps[at]);
        }
        write_key(steps.back().name);
        write_scalar(*place.node, value, ietf_, writer_);
    }

    std::string text() {
        close(0, nullptr);
        writer_.EndObject();
        return {text_.GetString(), text_.GetSize()};
    }

private:
    void write_key(const std::string &name) {
        const std::string full = ietf_ && open_.empty() ? Model::openconfig().name + ":" + name : name;
        writer_.Key(full.data(), static_cast<rapidjson::SizeType>(full.size()));
    }

    void open(const PathStep &step) {
        if (!step.keys.empty() && !in_list_) {
            write_key(step.name);
            writer_.StartArray();
        } else if (step.keys.empty()) {
            write_key(step.name);
        }
        in_list_ = false;
        writer_.StartObject();
        open_.push_back(step);
    }

    // Down to `count` open steps; the list of the last one that is closed stays open for another entry of it.
    void close(std::size_t count, const PathStep *next) {
        while (open_.size() > count) {
            writer_.EndObject();
            if (!open_.back().keys.empty()) {
                in_list_ = open_.size() == count + 1 && next != nullptr && next->name == open_.back().name;
                if (!in_list_) {
                    writer_.EndArray();
                }
            }
            open_.pop_back();
        }
    }

    std::size_t depth_;
    bool ietf_;
    rapidjson::StringBuffer text_;
    Writer writer_{text_};
    std::vector<PathStep> open_; // below the document's node
    bool in_list_ = false;       // an array is open that takes the next entry
};

// ---- in ----

template <class Number>
std::string shortest(Number number, const std::string &path) {
    if (!std::isfinite(number)) {
        throw invalid("a value is no finite number", path);
    }
    std::array<char, 400> text{}; // the longest double has 309 digits in front of the point
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return {text.data(), end.ptr};
}

std::string decimal_text(const messages::Decimal64 &value, const std::string &path) {
    if (value.precision() > max_decimal_digits) {
        throw invalid("a decimal has more than 18 digits behind the point", path);
    }
    std::string digits = std::to_string(value.digits());
    const bool negative = digits.front() == '-';
    digits.erase(0, negative ? 1 : 0);
    if (digits.size() <= value.precision()) {
        digits.insert(0, value.precision() + 1 - digits.size(), '0');
    }
    if (value.precision() > 0) {
        digits.insert(digits.size() - value.precision(), ".");
    }
    return (negative ? "-" : "") + digits;
}

Refusal wrong_type(const ModelNode &leaf, const std::string &given, const std::string &path) {
    return invalid("a leaf of type " + leaf.type + " cannot be given as " + given, path);
}

// The keys and the enumerations are texts too.
void require_type(bool right, const ModelNode &leaf, const std::string &given, const std::string &path) {
    if (!right) {
        throw wrong_type(leaf, given, path);
    }
}

std::string json_leaf(const ModelNode &leaf, const Json &json, const std::string &path) {
    if (json.IsString()) {
        require_type(leaf.type != "boolean", leaf, "a JSON string", path);
        return {json.GetString(), json.GetStringLength()};
    }
    if (json.IsBool()) {
        require_type(leaf.type == "boolean", leaf, "a JSON boolean", path);
        return json.GetBool() ? "true" : "false";
    }
    require_type(json.IsNumber() && is_number(leaf), leaf,
                 json.IsNumber()   ? "a JSON number"
                 : json.IsNull()   ? "a JSON null"
                 : json.IsObject() ? "a JSON object"
                                   : "a JSON array",
                 path);
    if (json.IsUint64()) {
        return std::to_string(json.GetUint64());
    }
    return json.IsInt64() ? std::to_string(json.GetInt64()) : shortest(json.GetDouble(), path);
}

rapidjson::Document parsed(const messages::TypedValue &message, const std::string &path) {
    const std::string &text =
        message.value_case() == messages::TypedValue::kJsonIetfVal ? message.json_ietf_val() : message.json_val();
    rapidjson::Document document;
    // Iterative: a text may be as deep as it is long.
    constexpr unsigned flags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag;
    document.Parse<flags>(text.data(), text.size());
    if (document.HasParseError()) {
        throw invalid("the value is no JSON: byte " + std::to_string(document.GetErrorOffset()) + ": " +
                          rapidjson::GetParseError_En(document.GetParseError()),
                      path);
    }
    return document;
}

std::string member_name(const Json &name, const std::string &path) {
    const std::string full(name.GetString(), name.GetStringLength());
    const std::string module = Model::openconfig().name + ":";
    const std::string local = full.starts_with(module) ? full.substr(module.size()) : full;
    if (local.find(':') != std::string::npos || local.starts_with('@')) {
        throw invalid("the value has a member " + full + ", which is no node of the module " + Model::openconfig().name,
                      path);
    }
    return local;
}

RequestNode node_for(const ModelNode &node) {
    return {node.name, NamespaceName(Model::openconfig().namespace_uri)};
}

std::vector<RequestNode> object_children(const ModelNode &node, const Json &json, const std::string &path);

void sort_keys_first(const ModelNode &list, RequestNode &entry, const std::string &path) {
    for (auto key = list.keys.rbegin(); key != list.keys.rend(); ++key) {
        const auto found = std::find_if(entry.children.begin(), entry.children.end(),
                                        [&key](const RequestNode &child) { return child.tag == *key; });
        if (found == entry.children.end()) {
            throw invalid("an entry of the list lacks its key " + *key, path);
        }
        std::rotate(entry.children.begin(), found, found + 1);
    }
}

std::vector<RequestNode> entries(const ModelNode &list, const Json &json, const std::string &path) {
    if (!json.IsArray()) {
        throw invalid("a list is a JSON array", path);
    }
    std::vector<RequestNode> nodes;
    for (const Json &item : json.GetArray()) {
        RequestNode &entry = nodes.emplace_back(node_for(list));
        entry.children = object_children(list, item, path);
        sort_keys_first(list, entry, path);
    }
    return nodes;
}

// As deep as the model at most.
std::vector<RequestNode> object_children(const ModelNode &node, const Json &json, const std::string &path) {
    if (!json.IsObject()) {
        throw invalid("the node is a JSON object", path);
    }
    std::vector<RequestNode> nodes;
    std::unordered_set<std::string> names;
    for (const auto &[member, value] : json.GetObject()) {
        const std::string name = member_name(member, path);
        const ModelNode *child = node.child(name);
        const std::string child_path = (path == "/" ? "" : path) + "/" + name;
        if (child == nullptr) {
            throw invalid("the model has no such node", child_path);
        }
        if (!child->config) {
            throw invalid("operational state cannot be written", child_path);
        }
        if (!names.insert(name).second) {
            throw invalid("the value has the member twice", child_path);
        }
        if (child->kind == ModelNode::Kind::list) {
            std::vector<RequestNode> more = entries(*child, value, child_path);
            std::move(more.begin(), more.end(), std::back_inserter(nodes));
            continue;
        }
        RequestNode &made = nodes.emplace_back(node_for(*child));
        if (child->kind == ModelNode::Kind::leaf) {
            made.value = json_leaf(*child, value, child_path);
        } else {
            made.children = object_children(*child, value, child_path);
        }
    }
    return nodes;
}

[[noreturn]] void refuse_form(const messages::TypedValue &message, const std::string &path) {
    switch (message.value_case()) {
    case messages::TypedValue::VALUE_NOT_SET:
        throw invalid("there is no value", path);
    case messages::TypedValue::kLeaflistVal:
        throw invalid("the model has no leaf-list", path);
    default:
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED,
                      "values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any", path);
    }
}

void require_json(const messages::TypedValue &message, const std::string &path) {
    switch (message.value_case()) {
    case messages::TypedValue::kJsonVal:
    case messages::TypedValue::kJsonIetfVal:
        return;
    case messages::TypedValue::kStringVal:
    case messages::TypedValue::kIntVal:
    case messages::TypedValue::kUintVal:
    case messages::TypedValue::kBoolVal:
    case messages::TypedValue::kFloatVal:
    case messages::TypedValue::kDoubleVal:
    case messages::TypedValue::kDecimalVal:
        throw invalid("a scalar is no value of a node that is no leaf; give JSON", path);
    default:
        refuse_form(message, path);
    }
}

} // namespace

void require_served(messages::Encoding encoding) {
    if (std::find(served_encodings.begin(), served_encodings.end(), encoding) == served_encodings.end()) {
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED, "the encodings are JSON, JSON_IETF and PROTO");
    }
}

void write_value(const ModelNode &leaf, const std::string &value, messages::Encoding encoding,
                 messages::TypedValue &message) {
    if (encoding == messages::JSON) {
        message.set_json_val(json_scalar(leaf, value, false));
    } else if (encoding == messages::JSON_IETF) {
        message.set_json_ietf_val(json_scalar(leaf, value, true));
    } else {
        write_scalar_message(leaf, value, message);
    }
}

std::string json_document(const std::vector<DocumentLeaf> &leaves, std::size_t depth, messages::Encoding encoding) {
    const bool ietf = encoding == messages::JSON_IETF;
    if (leaves.size() == 1 && leaves.front().place->steps.size() == depth) {
        return json_scalar(*leaves.front().place->node, *leaves.front().value, ietf);
    }
    Document document(depth, ietf);
    for (const DocumentLeaf &leaf : leaves) {
        document.add(*leaf.place, *leaf.value);
    }
    return document.text();
}

std::string read_value(const ModelNode &leaf, const messages::TypedValue &message, const std::string &path) {
    using Form = messages::TypedValue;
    const bool is_text = leaf.type != "boolean" && !is_number(leaf);
    switch (message.value_case()) {
    case Form::kStringVal:
        require_type(is_text, leaf, "string_val", path);
        return message.string_val();
    case Form::kIntVal:
        require_type(is_number(leaf), leaf, "int_val", path);
        return std::to_string(message.int_val());
    case Form::kUintVal:
        require_type(is_number(leaf), leaf, "uint_val", path);
        return std::to_string(message.uint_val());
    case Form::kBoolVal:
        require_type(leaf.type == "boolean", leaf, "bool_val", path);
        return message.bool_val() ? "true" : "false";
    case Form::kFloatVal:
        require_type(leaf.type == "decimal64", leaf, "float_val", path);
        return shortest(message.float_val(), path);
    case Form::kDoubleVal:
        require_type(leaf.type == "decimal64", leaf, "double_val", path);
        return shortest(message.double_val(), path);
    case Form::kDecimalVal:
        require_type(leaf.type == "decimal64", leaf, "decimal_val", path);
        return decimal_text(message.decimal_val(), path);
    case Form::kJsonVal:
    case Form::kJsonIetfVal:
        return json_leaf(leaf, parsed(message, path), path);
    default:
        refuse_form(message, path);
    }
}

std::vector<RequestNode> read_tree(const ModelNode &node, const messages::TypedValue &message,
                                   const std::string &path) {
    require_json(message, path);
    return object_children(node, parsed(message, path), path);
}

std::vector<RequestNode> read_entries(const ModelNode &list, const messages::TypedValue &message,
                                      const std::string &path) {
    require_json(message, path);
    return entries(list, parsed(message, path), path);
}

} // namespace ocpsm::gnmi
