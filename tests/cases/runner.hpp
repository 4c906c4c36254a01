// Runs the cases of a directory as GoogleTest cases.
#ifndef TESTS_CASES_RUNNER_HPP
#define TESTS_CASES_RUNNER_HPP

#include <functional>
#include <string>

#include "cases/case_file.hpp"

namespace case_runner {

// What the code under test makes of a case, to be compared whole with the expected section of that name. Called once
// for each of them. Throws std::exception to fail the case, BadCase with the line that it does not understand.
using Answer = std::function<std::string(const Case &test, const std::string &wanted)>;

// Registers every case of every *.cases file of a directory: in the suite of the file's name, written as one word. A
// file that is malformed, and a directory without a file, is a test that fails. Call it before main, as the initial
// value of a constant. Returns true.
bool register_cases(const std::string &directory, const Answer &answer);

// The lines of two texts that differ, expected ones behind "-", actual ones behind "+"; empty when they are equal.
std::string difference(const std::string &expected, const std::string &actual);

} // namespace case_runner

#endif
