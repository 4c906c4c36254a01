// A directory of a test's own, removed at its end.
#ifndef TESTS_SYSDB_TEMPORARY_DIRECTORY_HPP
#define TESTS_SYSDB_TEMPORARY_DIRECTORY_HPP

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "ocpsm-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        path = name;
    }
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path;
};

#endif
