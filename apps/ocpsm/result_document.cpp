#include "result_document.hpp"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "framework/text.hpp"

namespace ocpsm {
namespace {

struct Content {
    std::vector<DeviceRequest> native;
    const std::string *result = nullptr;
    const std::vector<Change> *changes = nullptr;
    const std::vector<std::string> &warnings;
};

std::string indented(std::string_view lines, std::size_t columns) {
    std::string text;
    for (const char c : lines.substr(0, lines.find_last_not_of('\n') + 1)) {
        text += c;
        text.append(c == '\n' ? columns : 0, ' ');
    }
    return text;
}

// ---- JSON ----

template <class Writer>
void write_member(Writer &writer, const char *name, const std::string &value) {
    writer.Key(name);
    writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

template <class Writer>
void write_change(Writer &writer, const Change &change) {
    writer.StartObject();
    write_member(writer, "path", change.path);
    if (change.before) {
        write_member(writer, "before", *change.before);
    }
    if (change.after) {
        write_member(writer, "after", *change.after);
    }
    writer.EndObject();
}

std::string to_json(const Content &content) {
    constexpr unsigned indent = 2;
    rapidjson::StringBuffer text;
    rapidjson::PrettyWriter writer(text);
    writer.SetIndent(' ', indent);
    writer.StartObject();
    writer.Key("native");
    writer.StartArray();
    for (const DeviceRequest &request : content.native) {
        const std::string printed = indented(request.print(Format::json), std::size_t{2} * indent);
        writer.RawValue(printed.data(), printed.size(), rapidjson::kObjectType);
    }
    writer.EndArray();
    if (content.result != nullptr) {
        write_member(writer, "result", *content.result);
    }
    if (content.changes != nullptr) {
        writer.Key("changes");
        writer.StartArray();
        for (const Change &change : *content.changes) {
            write_change(writer, change);
        }
        writer.EndArray();
    }
    writer.Key("warnings");
    writer.StartArray();
    for (const std::string &warning : content.warnings) {
        const std::string line = one_line(warning, whole_text);
        writer.String(line.data(), static_cast<rapidjson::SizeType>(line.size()));
    }
    writer.EndArray();
    writer.EndObject();
    return std::string(text.GetString(), text.GetSize()) + "\n";
}

// ---- XML ----

std::string to_xml(const Content &content) {
    std::string text = content.native.empty() ? "<result>\n  <native/>\n" : "<result>\n  <native>\n";
    for (const DeviceRequest &request : content.native) {
        text += "    " + indented(request.print(Format::xml), 4) + "\n";
    }
    text += content.native.empty() ? "" : "  </native>\n";
    if (content.result != nullptr) {
        text += "  " + xml_element("result", *content.result);
    }
    for (const Change &change : content.changes == nullptr ? std::vector<Change>() : *content.changes) {
        text += "  <change>\n    " + xml_element("path", change.path);
        text += change.before ? "    " + xml_element("before", *change.before) : "";
        text += change.after ? "    " + xml_element("after", *change.after) : "";
        text += "  </change>\n";
    }
    for (const std::string &warning : content.warnings) {
        text += "  " + xml_element("warning", one_line(warning, whole_text));
    }
    return text + "</result>\n";
}

std::string document(const Content &content, Format format) {
    return format == Format::json ? to_json(content) : to_xml(content);
}

// Members that are texts, and left out where they are empty.
constexpr std::pair<const char *, std::string JournalEntry::*> entry_texts[] = {
    {"module", &JournalEntry::module}, {"line", &JournalEntry::line},     {"before", &JournalEntry::before},
    {"after", &JournalEntry::after},   {"reason", &JournalEntry::reason}, {"user", &JournalEntry::user}};

} // namespace

std::string document(const EditResult &result, Format format) {
    std::vector<DeviceRequest> native;
    if (!result.native.operations().empty()) {
        native.push_back(result.native);
    }
    return document({std::move(native), nullptr, &result.changes, result.warnings}, format);
}

std::string document(const TranslateResult &result, Format format) {
    const bool refused = result.error.has_value();
    return document(
        {refused ? std::vector<DeviceRequest>() : result.requests, &result.result, nullptr, result.warnings}, format);
}

std::string json_line(const Leaf &leaf) {
    rapidjson::StringBuffer text;
    rapidjson::Writer writer(text);
    writer.StartObject();
    write_member(writer, "path", leaf.path);
    write_member(writer, "value", leaf.value);
    writer.EndObject();
    return std::string(text.GetString(), text.GetSize()) + "\n";
}

std::string json_line(const Change &change) {
    rapidjson::StringBuffer text;
    rapidjson::Writer writer(text);
    write_change(writer, change);
    return std::string(text.GetString(), text.GetSize()) + "\n";
}

std::string json_line(const JournalEntry &entry) {
    rapidjson::StringBuffer text;
    rapidjson::Writer writer(text);
    writer.StartObject();
    writer.Key("sequence");
    writer.Uint64(entry.sequence);
    write_member(writer, "time", date_and_time(entry.time));
    writer.Key("clock");
    writer.Uint64(entry.clock);
    write_member(writer, "kind", std::string(name_of(entry.kind)));
    for (const auto &[name, member] : entry_texts) {
        if (!(entry.*member).empty()) {
            write_member(writer, name, one_line(entry.*member, whole_text));
        }
    }
    if (!entry.changes.empty()) {
        writer.Key("changes");
        writer.StartArray();
        for (const Change &change : entry.changes) {
            write_change(writer, change);
        }
        writer.EndArray();
    }
    writer.EndObject();
    return std::string(text.GetString(), text.GetSize()) + "\n";
}

} // namespace ocpsm
