// Plays a case: carries out its steps on a platform of its own and compares what happens with what it expects.
#ifndef TESTS_SUPPORT_CASES_SCENE_HPP
#define TESTS_SUPPORT_CASES_SCENE_HPP

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arguments.hpp"
#include "checker.hpp"
#include "request.hpp"
#include "story.hpp"
#include "text.hpp"

namespace cases {

struct Failure {
    std::string file;
    int line = 0;
    std::string text; // begins with the row, where there are rows
};

// All runs of a case. A case that cannot be understood is a failure.
[[nodiscard]] std::vector<Failure> play(const File &file, const Case &whole);

// One run.
class Scene {
public:
    Scene(const File &file, const Run &run) : file_(file), run_(run) {}

    std::vector<Failure> play(const Block &steps);

private:
    using Words = std::vector<std::string>;
    using Step = void (Scene::*)(const Line &, const Words &);
    [[nodiscard]] static const std::map<std::string, Step> &steps();

    void take(const Line &line);
    void fail(const Line &at, const std::string &text);
    void compare(const Line &at, const std::string &what, const std::vector<std::string> &expected,
                 const std::vector<std::string> &actual);

#define STEP(word, function) void function(const Line &line, const Words &all);
#define STEP_TOO(word, function)
#include "steps.def"

    struct Call {
        std::string function;
        std::vector<std::string> arguments;
        std::string result;
        std::vector<std::string> written; // by a utility
    };
    [[nodiscard]] static Call parsed_call(const Line &line, const std::string &text);
    [[nodiscard]] kerrno run(const Line &line, const Call &call);
    [[nodiscard]] Call next_call(const Line &line, const std::string &text);
    [[nodiscard]] std::vector<std::string> done_by(const Line &line, const Call &call, const View &view);
    [[nodiscard]] kidl_yfw_datatree *node_at(const Line &line, const std::string &path);
    [[nodiscard]] fake::Node described(const Line &line, const Words &all) const;
    [[nodiscard]] fake::Node root_of(const Line &line, const Words &all, std::size_t of_step) const;
    void settle(); // what the last call left behind, unless it was said
    void play_below(const Line &line);

    const File &file_;
    const Run &run_;
    fake::Stage stage_;
    View view_;
    fake::Checker::Tolerance tolerance_ = fake::Checker::Tolerance::nothing;
    std::optional<std::string> namespace_;
    bool has_namespace_ = false;
    std::map<std::string, fake::Tree *> trees_;
    std::array<char, 40> bag_{};    // that a call is handed
    std::vector<std::string> left_; // behind by the last call
    const Line *last_call_ = nullptr;
    std::vector<std::unique_ptr<Line>> kept_;
    std::vector<Failure> failures_;
};

} // namespace cases

#endif
