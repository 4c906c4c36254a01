#include "fake_platform.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace fake {
namespace {

Platform *standing = nullptr;

struct ShortName {
    const char *uri;
    const char *name;
};

constexpr std::array<ShortName, 8> namespaces{{
    {"http://openconfig.net/yang/optical-transport-line-protection", "openconfig"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg", "ots-cfg"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg", "mda-cfg"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg", "ifmgr-cfg"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg", "optics-cfg"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper", "ots-oper"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-oper", "optics-oper"},
    {"http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper", "pmengine-oper"},
}};

} // namespace

std::string quoted(const char *text) {
    return text == nullptr ? "null" : "\"" + std::string(text) + "\"";
}

std::string namespace_name(const char *uri) {
    if (uri == nullptr) {
        return "null";
    }
    const auto *const found = std::find_if(namespaces.begin(), namespaces.end(),
                                           [&](const ShortName &entry) { return std::string_view(entry.uri) == uri; });
    return found == namespaces.end() ? quoted(uri) : found->name;
}

std::string namespace_of(const std::string &name) {
    const auto *const found =
        std::find_if(namespaces.begin(), namespaces.end(), [&](const ShortName &entry) { return entry.name == name; });
    return found == namespaces.end() ? name : found->uri;
}

std::string hex(std::uint32_t number) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%08x", number);
    return text.data();
}

Platform::Platform() {
    if (standing != nullptr) {
        std::fputs("a second fake platform was made while one stands\n", stderr);
        std::abort();
    }
    standing = this;
}

Platform::~Platform() {
    standing = nullptr;
}

Platform &Platform::current() {
    if (standing == nullptr) {
        std::fputs("the plug-in called the platform while no fake platform stands\n", stderr);
        std::abort();
    }
    return *standing;
}

std::vector<std::string> Platform::calls(unsigned groups) const {
    std::vector<std::string> chosen;
    for (const Line &line : lines_) {
        if ((line.group & groups) != 0) {
            chosen.push_back(line.text);
        }
    }
    return chosen;
}

void Platform::forget() {
    lines_.clear();
    counts_.clear();
    log_.clear();
    trace_.clear();
}

std::size_t Platform::count(const std::string &operation) const {
    const auto found = counts_.find(operation);
    return found == counts_.end() ? 0 : found->second;
}

std::string Platform::name_of(const void *object) const {
    if (object == nullptr) {
        return "null";
    }
    const auto found = names_.find(object);
    if (found != names_.end()) {
        return found->second;
    }
    for (const Tree *tree : trees_) {
        if (tree->owns(object)) {
            return tree->path_of(object);
        }
    }
    return "unknown";
}

std::string Platform::array_name_of(const void *array) const {
    for (const Tree *tree : trees_) {
        if (const std::string owner = tree->owner_of_array(array); !owner.empty()) {
            return "children of " + owner;
        }
    }
    return array == nullptr ? "null" : "unknown";
}

Tree *Platform::tree_of(const void *node) const {
    const auto found = std::find_if(trees_.begin(), trees_.end(), [&](const Tree *tree) { return tree->owns(node); });
    return found == trees_.end() ? nullptr : *found;
}

void Platform::answer(std::string operation, std::uint32_t result, std::size_t nth, std::string containing) {
    rules_.push_back({std::move(operation), result, nth, std::move(containing)});
}

void Platform::before(std::string operation, std::function<void(const std::string &)> hook, std::string containing) {
    hooks_.push_back({std::move(operation), std::move(hook), std::move(containing)});
}

std::vector<std::string> Platform::heap() const {
    std::vector<std::string> outstanding;
    for (const auto &entry : heap_) {
        outstanding.push_back(std::string(entry.second.text.get()) + " (" + entry.second.tag + ")");
    }
    std::sort(outstanding.begin(), outstanding.end());
    return outstanding;
}

std::optional<std::uint32_t> Platform::record(Group group, const std::string &operation, const std::string &arguments) {
    std::string line = operation + "(" + arguments + ")";
    if (annotation && (operation == "add" || group == fake::Callbacks)) {
        line += annotation();
    }
    lines_.push_back({group, line});
    const std::size_t number = ++counts_[operation];
    std::vector<Hook> due; // a hook may install another
    std::copy_if(hooks_.begin(), hooks_.end(), std::back_inserter(due), [&](const Hook &hook) {
        return hook.operation == operation && line.find(hook.containing) != std::string::npos;
    });
    for (const Hook &hook : due) {
        hook.run(line);
    }
    for (const Rule &rule : rules_) {
        if (rule.operation == operation && (rule.nth == 0 || rule.nth == number) &&
            line.find(rule.containing) != std::string::npos) {
            return rule.result;
        }
    }
    return std::nullopt;
}

void Platform::take_back(const void *item) {
    if (standing != nullptr && standing->items_out_.erase(item) != 0) {
        standing->record_message(Releases, "free(item)");
    }
}

char *Platform::duplicate(const char *text, const char *tag) {
    const std::string_view source(text);
    auto copy = std::make_unique<char[]>(source.size() + 1);
    std::copy(source.begin(), source.end(), copy.get());
    char *const address = copy.get();
    heap_[address] = {std::move(copy), tag == nullptr ? "null" : tag};
    return address;
}

void Platform::release(void *text) {
    if (text != nullptr && heap_.erase(text) == 0) {
        fault("hvs_named_free of something that yfw_strdup did not give, or a second time");
    }
}

void Platform::keep_current_entry(yfw_map_ctx ctx, const char *list_path) {
    if (ctx == nullptr || ctx->request == nullptr) {
        return;
    }
    ctx->request->list_node = nullptr;
    current_entry_.reset();
    const std::string_view path(list_path);
    const std::string_view tag = path.substr(path.rfind('/') + 1);
    if (hierarchy.empty() || hierarchy.back().node->tag == nullptr || hierarchy.back().node->tag != tag) {
        return;
    }
    current_entry_ = Tree::copy_of(*hierarchy.back().node);
    current_entry_->rename("list_node");
    ctx->request->list_node = current_entry_->root();
}

} // namespace fake

// The linker leads the program's own calls here, which makes the names.
extern "C" {
void __real_free(void *memory);
void __wrap_free(void *memory);

void __wrap_free(void *memory) {
    fake::Platform::take_back(memory);
    __real_free(memory);
}
}
