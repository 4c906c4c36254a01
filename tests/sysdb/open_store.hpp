// The store on a fresh directory, closed at the end of the test.
#ifndef TESTS_SYSDB_OPEN_STORE_HPP
#define TESTS_SYSDB_OPEN_STORE_HPP

#include <string>

#include <gtest/gtest.h>

#include "framework/error.hpp"
#include "simulator/store/store.hpp"
#include "sysdb/temporary_directory.hpp"

class OpenStore : public testing::Test {
public:
    OpenStore() { store.open(directory.path / "state", ocpsm::sysdb::Store::Mode::create); }
    ~OpenStore() override { store.close(); }

protected:
    TemporaryDirectory directory;
    ocpsm::sysdb::Store &store = *sysdb_client_store();
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
