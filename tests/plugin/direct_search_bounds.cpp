// The tree searches against the plain algorithm that they shorten, and what they cost: the work of a request grows with
// its leaves, and a tree of any depth is searched within the stack.
#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "exports.hpp"
#include "request.hpp"
#include "utility.hpp"

namespace {

using fake::container;
using fake::leaf;
using fake::Node;

constexpr std::size_t path_room = 199; // characters of a path buffer

std::string repeated(std::size_t count, char character) {
    return std::string(count, character);
}

// What a search finds and leaves in its buffers, which are on the heap and of their exact size; the value's begins as
// an unlikely text.
using Found = std::tuple<int, std::string, std::string>;

template <class Search>
Found run(const std::string &start, Search search) {
    std::vector<char> path(path_room + 1);
    std::copy(start.begin(), start.end(), path.begin());
    std::vector<char> value(path_room + 1, '\0');
    value[0] = '#';
    const int result = search(path.data(), value.data());
    return {result, path.data(), value.data()};
}

// ---- the plain algorithm: every node that is in use is visited in pre-order ----

bool is_used(const Node &node) {
    return (node.flags & YFW_NODE_IN_USE) != 0 && (node.cleared_flags & YFW_NODE_IN_USE) == 0;
}

std::string extended(const std::string &path, const std::string &text) {
    return (path + text).substr(0, path_room);
}

std::optional<std::string> plain_value(const Node &node, const std::string &wanted, std::string &path) {
    if (!is_used(node)) {
        return std::nullopt;
    }
    path = extended(path, node.tag.value_or(""));
    if (node.value && path == wanted) {
        return node.value->substr(0, path_room);
    }
    path = extended(path, "/");
    for (const Node &child : node.children) {
        std::string child_path = path;
        if (auto found = plain_value(child, wanted, child_path)) {
            return found;
        }
    }
    return std::nullopt;
}

// With a value: a node with that path and value; without: a node with that path.
bool plain_search(const Node &node, const std::string &wanted, const std::string *value, std::string &path) {
    if (!is_used(node)) {
        return false;
    }
    path = extended(path, node.tag.value_or(""));
    if (path == wanted && (value == nullptr || (node.value && *node.value == *value))) {
        return true;
    }
    for (const Node &child : node.children) {
        const std::string own = path;
        path = extended(path, "/");
        if (plain_search(child, wanted, value, path)) {
            return true;
        }
        path = own;
    }
    return false;
}

// ---- random trees ----

class Forest {
public:
    explicit Forest(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

    // Few tags, so that paths recur; some that fill the buffer or run over it.
    Node tree(std::size_t depth) {
        const std::string tags[] = {
            "a", "b", "ab", "a/b", "", repeated(97, 'a'), repeated(199, 'a'), repeated(240, 'b')};
        Node node = container(tags[below(4) == 0 ? below(8) : below(3)]);
        if (below(12) == 0) {
            node.tag.reset();
        }
        if (below(2) == 0) {
            node.value = std::string(below(3), 'v');
        }
        if (below(12) == 0) {
            node.cleared_flags = YFW_NODE_IN_USE;
        }
        for (std::size_t child = depth == 0 ? 0 : below(4); child > 0; --child) {
            node.children.push_back(tree(depth - 1));
        }
        return node;
    }

    // The path of some node of a tree, at times cut short or run over.
    std::string path_in(const Node &tree) {
        std::string path;
        const Node *node = &tree;
        for (;;) {
            path = extended(path, node->tag.value_or(""));
            if (node->children.empty() || below(4) == 0) {
                break;
            }
            path = extended(path, "/");
            node = &node->children[below(node->children.size())];
        }
        switch (below(8)) {
        case 0:
            return path.substr(0, below(path.size() + 1));
        case 1:
            return path + "/a";
        default:
            return path;
        }
    }

private:
    std::mt19937 random_;
};

class SearchBounds : public fake::RequestTest {
protected:
    SearchBounds() { request.set_channels(false, false); }
};

TEST_F(SearchBounds, FindsWhatTheVisitOfEveryNodeFinds) {
    std::size_t found = 0;
    std::size_t missed = 0;
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(seed);
        Forest forest(seed);
        const Node tree = forest.tree(4);
        const std::string wanted = forest.path_in(tree);
        const std::string start = forest.below(6) == 0 ? "a/" : "";
        kidl_yfw_datatree *root = build(tree).root();

        const yfw_map_ctx ctx = request.ctx();
        const char *const path_to_find = wanted.c_str();
        std::string plain_path = start;
        const std::optional<std::string> plain = plain_value(tree, wanted, plain_path);
        ASSERT_EQ(
            run(start, [&](char *path, char *value) { return compare_path(ctx, root, path_to_find, path, value); }),
            (Found{plain ? 1 : 0, plain_path, plain.value_or("#")}));

        plain_path = start;
        const bool there = plain_search(tree, wanted, nullptr, plain_path);
        ASSERT_EQ(run(start, [&](char *path, char *) { return check_request_type_3(ctx, root, path_to_find, path); }),
                  (Found{there ? 1 : 0, plain_path, "#"}));

        const std::string sought(forest.below(3), 'v');
        plain_path = start;
        const bool equal = plain_search(tree, wanted, &sought, plain_path);
        ASSERT_EQ(
            run(start, [&](char *path,
                           char *) { return search_data_in_response(ctx, root, path_to_find, path, sought.c_str()); }),
            (Found{equal ? 1 : 0, plain_path, "#"}));

        ++(plain ? found : missed);
        drop_trees();
        platform.forget();
    }
    // Neither side of the comparison is there by chance.
    EXPECT_GT(found, 300u);
    EXPECT_GT(missed, 300u);
}

// ---- work ----

// The texts that the searches of a read put together are a measure of the nodes that they visit.
TEST_F(SearchBounds, TheWorkOfAReadGrowsWithItsLeaves) {
    const auto conversion = fake::function<fake::Callback>("oc_opt_psm_cfg_primary_th_hyst_to_low");
    const auto work_of = [&](std::size_t thresholds, bool named) {
        platform.forget();
        Node entry = container("aps-module",
                               {container("config", std::vector<Node>(thresholds, leaf("primary-switch-hysteresis")))});
        if (named) {
            entry.children.push_back(leaf("name", "0/1-PSM-OM")); // behind what the searches have to pass
        }
        request.set_list_entry(entry);
        kidl_yfw_datatree *config = build(entry).at("config");
        for (kidl_yfw_datatree &selected : std::vector(config->children, config->children + config->child_count)) {
            EXPECT_EQ(conversion(request.ctx(), &selected, dest), KERR_SUCCESS);
        }
        const std::size_t work = platform.count("strcat_s");
        drop_trees();
        return work;
    };
    for (const bool named : {false, true}) {
        SCOPED_TRACE(named);
        const std::size_t once = work_of(200, named);
        EXPECT_GE(once, 200u);
        EXPECT_LE(static_cast<double>(work_of(400, named)), 2.2 * static_cast<double>(once));
    }
}

// ---- depth ----

// A node in use with one child, and so on down. The nodes have no tags: their paths are slashes.
class Chain {
public:
    explicit Chain(std::size_t levels) : nodes_(levels + 1) {
        for (std::size_t level = 0; level < nodes_.size(); ++level) {
            nodes_[level].flags = YFW_NODE_IN_USE;
            if (level < levels) {
                nodes_[level].flags |= YFW_NODE_CHILDREN_VALID;
                nodes_[level].child_count = 1;
                nodes_[level].children = &nodes_[level + 1];
            }
        }
    }
    const kidl_yfw_datatree *root() const { return nodes_.data(); }
    void give_value(std::size_t level, std::string value) {
        value_ = std::move(value);
        nodes_[level].flags |= YFW_NODE_HAS_VALUE;
        nodes_[level].value = value_.data();
    }

private:
    std::vector<kidl_yfw_datatree> nodes_;
    std::string value_;
};

class SearchDepth : public SearchBounds {
protected:
    // The results of the searches for a value and for data.
    std::pair<int, int> find(const Chain &chain) {
        const auto value = [&](char *path, char *found) {
            return compare_path(request.ctx(), chain.root(), slashes.c_str(), path, found);
        };
        const auto data = [&](char *path, char *) {
            return search_data_in_response(request.ctx(), chain.root(), slashes.c_str(), path, "v");
        };
        return {std::get<0>(run("", value)), std::get<0>(run("", data))};
    }
    // Every path from level 199 down, cut as it is.
    const std::string slashes = repeated(199, '/');
};

TEST_F(SearchDepth, EndsALongWayDownAsIfNothingHadBeenFound) {
    Chain chain(30000);
    chain.give_value(30000, "v");
    EXPECT_EQ(find(chain), std::pair(0, 0));
    EXPECT_EQ(check_request_type(request.ctx(), chain.root(), "none"), 0);
    const std::string too_long = repeated(250, '/'); // longer than any path, begun by all of them
    EXPECT_EQ(
        run("", [&](char *path,
                    char *) { return check_request_type_3(request.ctx(), chain.root(), too_long.c_str(), path); }),
        (Found{0, "", "#"}));
}

TEST_F(SearchDepth, Reaches1000LevelsDown) {
    Chain last(1001);
    last.give_value(1000, "v");
    EXPECT_EQ(find(last), std::pair(1, 1));
    Chain beyond(1001);
    beyond.give_value(1001, "v");
    EXPECT_EQ(find(beyond), std::pair(0, 0));
}

} // namespace
