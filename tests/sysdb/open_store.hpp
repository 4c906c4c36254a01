// A store in a fresh directory.
#ifndef TESTS_SYSDB_OPEN_STORE_HPP
#define TESTS_SYSDB_OPEN_STORE_HPP

#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "framework/error.hpp"
#include "simulator/store/store.hpp"
#include "sysdb/temporary_directory.hpp"

inline std::unique_ptr<ocpsm::sysdb::Store> open_store(const std::filesystem::path &directory,
                                                       ocpsm::sysdb::Store::Mode mode) {
    return std::unique_ptr<ocpsm::sysdb::Store>(sysdb_client_open(directory, mode));
}

class OpenStore : public testing::Test {
public:
    OpenStore() { store->write()->commit(); }

protected:
    void open_again() { store = open_store(state, ocpsm::sysdb::Store::Mode::existing); }

    TemporaryDirectory directory;
    std::filesystem::path state = directory.path / "state";
    std::unique_ptr<ocpsm::sysdb::Store> store = open_store(state, ocpsm::sysdb::Store::Mode::create);
};

// What a ocpsm::Error says, all of it.
template <class Operation>
std::string error_of(Operation operation) {
    try {
        operation();
    } catch (const ocpsm::Error &error) {
        return std::string(error.source == ocpsm::Error::Source::input ? "input" : "refused") + "|" + error.tag + "|" +
               error.path + "|" + error.what() + "|" + error.advice;
    }
    return "no error";
}

#endif
