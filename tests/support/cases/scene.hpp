// Plays a case: carries out its steps on a platform of its own and compares what happens with what it expects.
#ifndef TESTS_SUPPORT_CASES_SCENE_HPP
#define TESTS_SUPPORT_CASES_SCENE_HPP

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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

    // ---- what is set up ----
    void kind(const Line &line, const Words &all);
    void selection(const Line &line, const Words &all);
    void channels(const Line &line, const Words &all);
    void error_node(const Line &line, const Words &all);
    void name_space(const Line &line, const Words &all);
    void tree(const Line &line, const Words &all);
    void list_entry(const Line &line, const Words &all);
    void root(const Line &line, const Words &all);
    void node_info(const Line &line, const Words &all);
    void answer(const Line &line, const Words &all);
    void numbered_adds(const Line &line, const Words &all);
    void item(const Line &line, const Words &all);
    void no_item(const Line &line, const Words &all);
    void listing(const Line &line, const Words &all);
    void database(const Line &line, const Words &all);
    void hierarchy(const Line &line, const Words &all);
    void record(const Line &line, const Words &all);
    void push(const Line &line, const Words &all);
    void callbacks(const Line &line, const Words &all);
    void when(const Line &line, const Words &all);
    void watch(const Line &line, const Words &all);
    void node(const Line &line, const Words &all);
    void modules(const Line &line, const Words &all);
    void relative_adds(const Line &line, const Words &all);
    // ---- what is looked at ----
    void look(const Line &line, const Words &all);
    void hide(const Line &line, const Words &all);
    void mute(const Line &line, const Words &all);
    void hear(const Line &line, const Words &all);
    void tolerate(const Line &line, const Words &all);
    // ---- what is done ----
    void call(const Line &line, const Words &all);
    void dies(const Line &line, const Words &all);
    void on_every_channel(const Line &line, const Words &all);
    void same(const Line &line, const Words &all);
    void first_write(const Line &line, const Words &all);
    void formats(const Line &line, const Words &all);
    void left(const Line &line, const Words &all);
    void count(const Line &line, const Words &all);
    void heap(const Line &line, const Words &all);
    void stack(const Line &line, const Words &all);

    struct Call {
        std::string function;
        std::vector<std::string> arguments;
        std::string result;
    };
    [[nodiscard]] static Call parsed_call(const Line &line, const std::string &text);
    [[nodiscard]] kerrno run(const Line &line, const Call &call);
    [[nodiscard]] kidl_yfw_datatree *node_at(const Line &line, const std::string &path);
    [[nodiscard]] fake::Node described(const Line &line, const Words &all) const;
    [[nodiscard]] fake::Node root_of(const Line &line, const Words &all, std::size_t of_step) const;
    [[nodiscard]] std::uint32_t *member(const Line &line, const std::string &record, const std::string &name);
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
    std::vector<std::string> left_; // behind by the last call
    const Line *last_call_ = nullptr;
    std::vector<std::unique_ptr<Line>> kept_;
    std::vector<Failure> failures_;
};

} // namespace cases

#endif
