// The model as servers see it.
#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

#include "framework/model.hpp"

namespace {

using testing::ElementsAre;

// "PATH kind rw|ro type [keys]" of a node.
std::string words(const ocpsm::ModelNode &node) {
    constexpr std::array<const char *, 3> kinds{"container", "list", "leaf"};
    return node.path + " " + kinds.at(static_cast<std::size_t>(node.kind)) + (node.config ? " rw " : " ro ") +
           node.type + " [" + (node.keys.empty() ? "" : node.keys.front()) + "]";
}

TEST(Model, SaysWhatAServerHasToKnow) {
    const ocpsm::Model &model = ocpsm::Model::openconfig();
    EXPECT_EQ(model.name, "openconfig-transport-line-protection");
    EXPECT_EQ(model.namespace_uri, "http://openconfig.net/yang/optical-transport-line-protection");
    EXPECT_EQ(model.revision, "2018-11-21");
    EXPECT_EQ(model.prefix, "oc-line-protect");
    EXPECT_TRUE(model.text.starts_with("module openconfig-transport-line-protection {"));
    EXPECT_EQ(model.organization, "OpenConfig working group (model); this text is an edition of its own");
    std::vector<std::string> lines;
    const ocpsm::ModelNode *node = &model.root;
    for (const char *step : {"aps", "aps-modules", "aps-module", "state", "active-path"}) {
        node = node->child(step);
        ASSERT_NE(node, nullptr);
        lines.push_back(words(*node));
    }
    EXPECT_THAT(lines, ElementsAre("/aps container rw  []", "/aps/aps-modules container rw  []",
                                   "/aps/aps-modules/aps-module list rw  [name]",
                                   "/aps/aps-modules/aps-module/state container ro  []",
                                   "/aps/aps-modules/aps-module/state/active-path leaf ro identityref []"));
    EXPECT_EQ(node->child("anything"), nullptr);
    EXPECT_EQ(model.root.child("nothing"), nullptr);
}

} // namespace
