#include "servers/netconf/state.hpp"

#include <string>
#include <utility>

#include "framework/user.hpp"
#include "servers/netconf/modules.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr char name_of_set[] = "all";

// A leaf with the name of an identity of another module.
RequestNode identity(const NamespaceName &space, const std::string &tag, const NamespaceName &of,
                     const std::string &prefix, const std::string &name) {
    RequestNode node = leaf(space, tag, prefix + ":" + name);
    node.attributes.push_back({{}, "xmlns:" + prefix, of.str()});
    return node;
}

RequestNode library() {
    Tree set{leaf(space::library, "name", name_of_set)};
    for (const YangModule &model : modules()) {
        set.push_back(inner(space::library, "module",
                            {leaf(space::library, "name", model.name), leaf(space::library, "revision", model.revision),
                             leaf(space::library, "namespace", model.namespace_uri)}));
        if (model.namespace_uri == std::string_view(space::netconf)) {
            for (const char *feature : {"writable-running", "rollback-on-error", "validate", "xpath"}) {
                set.back().children.push_back(leaf(space::library, "feature", feature));
            }
        }
    }
    return inner(space::library, "yang-library",
                 {inner(space::library, "module-set", std::move(set)),
                  inner(space::library, "schema",
                        {leaf(space::library, "name", name_of_set), leaf(space::library, "module-set", name_of_set)}),
                  inner(space::library, "datastore",
                        {identity(space::library, "name", space::datastores, "ds", "running"),
                         leaf(space::library, "schema", name_of_set)}),
                  leaf(space::library, "content-id", content_id())});
}

RequestNode own_leaf(const std::string &tag, const std::string &value) {
    return leaf(space::monitoring, tag, value);
}

RequestNode own_inner(const std::string &tag, Tree children) {
    return inner(space::monitoring, tag, std::move(children));
}

RequestNode datastore(const Service &service) {
    Tree store{own_leaf("name", "running")};
    if (const auto holder = service.lock_holder()) {
        store.push_back(own_inner(
            "locks", {own_inner("global-lock", {own_leaf("locked-by-session", std::to_string(holder->process)),
                                                own_leaf("locked-time", date_and_time(holder->since))})}));
    }
    return own_inner("datastore", std::move(store));
}

RequestNode schemas() {
    Tree all;
    for (const YangModule &model : modules()) {
        all.push_back(own_inner("schema", {own_leaf("identifier", model.name), own_leaf("version", model.revision),
                                           own_leaf("format", "yang"), own_leaf("namespace", model.namespace_uri),
                                           own_leaf("location", "NETCONF")}));
    }
    return own_inner("schemas", std::move(all));
}

RequestNode sessions_of(const Sessions &sessions) {
    Tree all;
    for (const SessionRecord &session : sessions.all()) {
        all.push_back(
            own_inner("session", {own_leaf("session-id", std::to_string(session.id)),
                                  own_leaf("transport", "netconf-ssh"), own_leaf("username", user_name(session.user)),
                                  own_leaf("login-time", date_and_time(session.begun))}));
    }
    return own_inner("sessions", std::move(all));
}

RequestNode monitoring(const Service &service, const Sessions &sessions) {
    Tree all;
    for (const std::string &capability : capabilities()) {
        all.push_back(own_leaf("capability", capability));
    }
    return own_inner("netconf-state",
                     {own_inner("capabilities", std::move(all)), own_inner("datastores", {datastore(service)}),
                      schemas(), sessions_of(sessions)});
}

RequestNode streams(const Service &service) {
    Tree stream{leaf(space::streams, "name", "NETCONF"),
                leaf(space::streams, "description", "What happens to the line system, from its journal"),
                leaf(space::streams, "replaySupport", "true")};
    if (const auto oldest = service.journal(0, 1); !oldest.empty()) {
        stream.push_back(leaf(space::streams, "replayLogCreationTime", date_and_time(oldest.front().time)));
    }
    return inner(space::streams, "netconf",
                 {inner(space::streams, "streams", {inner(space::streams, "stream", std::move(stream))})});
}

} // namespace

Tree server_state(const Service &service, const Sessions &sessions) {
    return {library(), monitoring(service, sessions), streams(service)};
}

} // namespace ocpsm::netconf
