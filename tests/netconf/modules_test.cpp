// The modules that a session announces: their texts are models, and what it tells is in them.
#include <gmock/gmock.h>
#include <libyang/libyang.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "servers/netconf/modules.hpp"
#include "servers/netconf/state.hpp"
#include "servers/netconf/xml.hpp"
#include "simulator/line_system.hpp"

namespace {

using ocpsm::YangModule;
using ocpsm::netconf::modules;

struct Destroy {
    void operator()(ly_ctx *context) const { ly_ctx_destroy(context); }
};

class Modules : public testing::Test {
protected:
    void SetUp() override {
        ly_ctx *made = nullptr;
        ASSERT_EQ(ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS, &made), LY_SUCCESS);
        context_.reset(made);
        for (const YangModule &model : modules()) {
            ly_in *in = nullptr;
            const std::string text(model.text);
            ASSERT_EQ(ly_in_new_memory(text.c_str(), &in), LY_SUCCESS);
            const char *all[] = {"*", nullptr};
            const lys_module *module = nullptr;
            EXPECT_EQ(lys_parse(made, in, LYS_IN_YANG, all, const_cast<lys_module **>(&module)), LY_SUCCESS)
                << model.name << ": " << ly_errmsg(made);
            ly_in_free(in, 0);
            parsed_.push_back(module);
        }
    }

    std::unique_ptr<ly_ctx, Destroy> context_;
    std::vector<const lys_module *> parsed_;
};

TEST_F(Modules, AreWhatIsSaidOfThem) {
    ASSERT_EQ(parsed_.size(), modules().size());
    for (std::size_t at = 0; at < parsed_.size(); ++at) {
        const YangModule &model = modules()[at];
        EXPECT_EQ(model.name, parsed_[at]->name);
        EXPECT_EQ(model.revision, parsed_[at]->revision) << model.name;
        EXPECT_EQ(model.prefix, parsed_[at]->prefix) << model.name;
        EXPECT_EQ(model.namespace_uri, parsed_[at]->ns) << model.name;
    }
}

TEST_F(Modules, HaveWhatTheServerTellsOfItself) {
    char name[] = "/tmp/ocpsm-netconf-XXXXXX";
    const std::filesystem::path directory = mkdtemp(name);
    {
        const ocpsm::SimulatedLineSystem system = ocpsm::SimulatedLineSystem::temporary();
        const ocpsm::Service service(PLUGIN, system.device());
        const std::shared_ptr<void> lock = service.lock();
        const ocpsm::netconf::Sessions sessions(directory / "netconf.lock");
        const std::string text = ocpsm::netconf::print(ocpsm::netconf::server_state(service, sessions), "");
        lyd_node *tree = nullptr;
        EXPECT_EQ(
            lyd_parse_data_mem(context_.get(), text.c_str(), LYD_XML, LYD_PARSE_STRICT, LYD_VALIDATE_PRESENT, &tree),
            LY_SUCCESS)
            << ly_errmsg(context_.get());
        lyd_free_all(tree);
    }
    std::filesystem::remove_all(directory);
}

} // namespace
