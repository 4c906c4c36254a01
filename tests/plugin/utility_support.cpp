#include "utility_support.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// Items of the database are the only memory that the platform allocates with calloc, so that their release can be
// seen. A plain table, because allocations are still released when objects are no more.
constinit std::array<const void *, 16> items{};
constinit bool watching = false;

} // namespace

// The linker leads the program's own calls here (--wrap), which makes the names.
extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void __real_free(void *memory);
void *__wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void *memory);

void *__wrap_calloc(std::size_t count, std::size_t size) {
    void *const memory = __real_calloc(count, size);
    if (watching) {
        *std::find(items.begin(), items.end(), nullptr) = memory;
    }
    return memory;
}

void __wrap_free(void *memory) {
    if (watching && memory != nullptr) {
        auto *const found = std::find(items.begin(), items.end(), memory);
        if (found != items.end()) {
            *found = nullptr;
            fake::Platform::current().record_message(fake::Database, "free(item)");
        }
    }
    __real_free(memory);
}
}

namespace utility {

Step call(std::string line) {
    return {"", "", std::move(line)};
}

Step trace(std::string function, std::string text) {
    return {"TRC", std::move(function), std::move(text)};
}

Step error(std::string function, std::string text) {
    return {"ERR", std::move(function), std::move(text)};
}

Steps operator+(Steps first, const Steps &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Lines lines_of(const Steps &steps) {
    Lines lines;
    std::uint32_t sequence = 0;
    for (const Step &step : steps) {
        if (step.level.empty()) {
            lines.push_back(step.text);
            continue;
        }
        lines.push_back("log " + step.level + " " + step.text);
        lines.push_back("trace " + step.level + " #" + std::to_string(++sequence) + " " + step.function + " " +
                        step.text);
    }
    return lines;
}

std::string context_assertion(const std::string &file, const std::string &prototype) {
    const auto literal = [](const std::string &text) {
        std::string pattern;
        for (const char character : text) {
            if (std::string(".()*[]").find(character) != std::string::npos) {
                pattern += '\\';
            }
            pattern += character;
        }
        return pattern;
    };
    return ": " + literal("manageability/yang/framework/mapping/oc-psm/src/" + file) +
           ":[0-9]+: " + literal(prototype) + ": Assertion `" + literal("((void *)0) != ctx") + "' failed";
}

Buffer Buffer::cleared(std::size_t size) {
    Buffer buffer(size);
    std::fill(buffer.bytes_.begin(), buffer.bytes_.end(), '\0');
    return buffer;
}

fake::Bag bag_of(std::vector<fake::Token> tokens) {
    fake::Bag bag;
    bag.tokens = std::move(tokens);
    return bag;
}

fake::Item item_of(std::string bytes, kerrno result) {
    fake::Item item;
    item.bytes = std::move(bytes);
    item.result = result;
    return item;
}

std::string repeated(std::size_t count, char character) {
    return std::string(count, character);
}

std::size_t items_outstanding() {
    return static_cast<std::size_t>(
        std::count_if(items.begin(), items.end(), [](const void *item) { return item != nullptr; }));
}

void UtilityTest::SetUp() {
    request.set_channels(false, false);
    platform.bind_gives_handle = false;
    void *data = nullptr;
    std::uint32_t length = 0;
    ASSERT_EQ(sysdb_get_data(request.ctx(), "", "", &data, &length, SYSDB_ITEM_BAG), KERR_SUCCESS);
    platform.bind_gives_handle = true;
    request.set_channels(true, true);
    platform.forget();
    watching = true;
}

void UtilityTest::TearDown() {
    watching = false;
    EXPECT_EQ(items_outstanding(), 0u) << "an item of the database was not released";
    items = {};
    RequestTest::TearDown();
}

Lines UtilityTest::happened() const {
    return platform.calls(fake::Channels | fake::Database | fake::Bags);
}

} // namespace utility
