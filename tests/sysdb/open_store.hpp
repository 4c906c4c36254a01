// The store on a fresh directory, closed at the end of the test.
#ifndef TESTS_SYSDB_OPEN_STORE_HPP
#define TESTS_SYSDB_OPEN_STORE_HPP

#include <string>

#include <gtest/gtest.h>

#include "bench/error.hpp"
#include "bench/sysdb/store.hpp"
#include "sysdb/temporary_directory.hpp"

class OpenStore : public testing::Test {
public:
    OpenStore() { store.open(directory.path / "state", bench::sysdb::Store::Mode::create); }
    ~OpenStore() override { store.close(); }

protected:
    TemporaryDirectory directory;
    bench::sysdb::Store &store = *sysdb_client_store();
};

// What a bench::Error says, all of it.
template <class Operation>
std::string error_of(Operation operation) {
    try {
        operation();
    } catch (const bench::Error &error) {
        return std::string(error.source == bench::Error::Source::input ? "input" : "refused") + "|" + error.tag + "|" +
               error.path + "|" + error.what() + "|" + error.advice;
    }
    return "no error";
}

#endif
