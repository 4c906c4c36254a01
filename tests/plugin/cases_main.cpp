// Runs the cases of one file, each as a test of its own: plugin_cases FILE [options of the test library].
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "scene.hpp"

namespace {

class CaseTest : public ::testing::Test {
public:
    CaseTest(const cases::File &file, const cases::Case &whole) : file_(file), case_(whole) {}

    void TestBody() override {
        for (const cases::Failure &failure : cases::play(file_, case_)) {
            ADD_FAILURE_AT(failure.file.c_str(), failure.line) << case_.title << "\n" << failure.text;
        }
    }

private:
    const cases::File &file_;
    const cases::Case &case_;
};

} // namespace

int main(int count, char **arguments) {
    ::testing::InitGoogleTest(&count, arguments);
    if (count != 2) {
        std::fputs("usage: plugin_cases FILE\n", stderr);
        return 2;
    }
    try {
        const cases::File file{std::filesystem::path(arguments[1])};
        const std::string suite = std::filesystem::path(arguments[1]).stem().string();
        for (const cases::Case &one : file.cases()) {
            ::testing::RegisterTest(suite.c_str(), one.title.c_str(), nullptr, nullptr, one.file.c_str(), one.line,
                                    [&file, &one]() -> ::testing::Test * {
                                        return new CaseTest(file, one); // NOLINT(cppcoreguidelines-owning-memory)
                                    });
        }
        return RUN_ALL_TESTS();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
