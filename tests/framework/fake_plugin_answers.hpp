// A plug-in that tells how it is called, and fails where it is told to.
#ifndef TESTS_FRAMEWORK_FAKE_PLUGIN_ANSWERS_HPP
#define TESTS_FRAMEWORK_FAKE_PLUGIN_ANSWERS_HPP

#include <string>
#include <vector>

#include "kerr.h"

struct FakeAnswers {
    // One line per call: walker, source, and what the context shows.
    std::vector<std::string> calls;

    std::string failing; // the walker that ends with `code`; "map" is a read that is made for the instance map
    kerrno code = KERR_SUCCESS;
    std::string stitch_leaf; // stitched by the first walker instead of the name
    std::string revertive;   // added by the walker of the slots
    bool stays = false;      // the first walker leaves its node on the hierarchy

    // How it is found in the loaded plug-in.
    static constexpr char symbol[] = "fake_answers";
};

#endif
