// What a request may cost: limits that are refused in a word, time linear in the text, memory in proportion to it.
#include <gmock/gmock.h>
#include <libyang/libyang.h>

#include <array>
#include <functional>
#include <random>

#include "dump.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/syntax.hpp"
#include "framework/request/type.hpp"
#include "measure.hpp"

namespace {

using ocpsm::Kind;
using ocpsm::RequestNode;
using ocpsm::framework::DataTree;

// `make` of 0 to `count` - 1, one behind the other.
std::string each(std::size_t count, const std::function<std::string(std::size_t)> &make) {
    std::string all;
    for (std::size_t number = 0; number < count; ++number) {
        all += make(number);
    }
    return all;
}

std::string repeated(std::size_t count, const std::string &text) {
    return each(count, [&text](std::size_t) { return text; });
}

// "PREFIX<number>SUFFIX", so many of them.
std::string numbered(std::size_t count, const std::string &prefix, const std::string &suffix) {
    return each(count, [&](std::size_t number) { return prefix + std::to_string(number) + suffix; });
}

// A JSON object with members, each with a comma in front of it.
std::string object(const std::string &members) {
    return "{" + (members.empty() ? members : members.substr(1)) + "}";
}

std::string aps(const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
           content + "</aps>";
}

std::string modules(const std::string &content) {
    return aps("<aps-modules>" + content + "</aps-modules>");
}

std::string json(const std::string &members) {
    return "{\"openconfig-transport-line-protection:aps\":" + object(members) + "}";
}

std::string entries(std::size_t count, const std::string &content) {
    return each(count, [&content](std::size_t number) {
        return "<aps-module><name>" + std::to_string(number) + "</name>" + content + "</aps-module>";
    });
}

// Every way of a request up to the trees that the plug-in gets, of which there are two. Returns how many are handed
// over.
std::size_t hand_over(std::vector<RequestNode> tops, Kind kind) {
    tops = ocpsm::framework::type_request(std::move(tops), kind, true);
    const auto trees = kind == Kind::edit ? ocpsm::framework::hand_over_edit(std::move(tops), {})
                                          : ocpsm::framework::hand_over_read(std::move(tops));
    for (const RequestNode &tree : trees) {
        const DataTree registered(tree);
        const DataTree duplicate(registered.root());
    }
    return trees.size();
}

std::size_t hand_over(const std::string &text, Kind kind) {
    return hand_over(ocpsm::framework::parse_request(text, kind).tops, kind);
}

std::string refusal(const std::string &text, Kind kind = Kind::edit) {
    return error_of([&] { (void)hand_over(text, kind); });
}

std::string scanned(const std::string &text) {
    return error_of([&text] { (void)ocpsm::framework::inspect(text); });
}

std::string too_big(const std::string &what, const std::string &advice = "send it in pieces") {
    return "input|too-big||" + what + "|" + advice;
}

const std::string too_deep = too_big("the request is nested deeper than 64 levels", "the model needs eight");
const std::string attributes_of_one =
    too_big("an element of the request has more than 64 attributes", "an operation is all that is known");
const std::string children_of_one = too_big("an element of the request has more than 2048 children");
const std::string long_name = too_big("a name or an attribute of the request has more than 1024 bytes", "shorten it");

struct Limit {
    const char *what;
    std::size_t most;
    std::function<std::string(std::size_t)> text; // with so many
    std::string error;                            // of one more
};

const Limit limits[] = {
    {"bytes", 8U << 20U, [](std::size_t n) { return "<a>" + std::string(n - 7, ' ') + "</a>"; },
     too_big("the request has more than 8 MiB")},
    {"levels", 64, [](std::size_t n) { return repeated(n, "<a>") + repeated(n, "</a>"); }, too_deep},
    {"levels of json", 64, [](std::size_t n) { return repeated(n, "{\"a\":") + "1" + repeated(n, "}"); }, too_deep},
    {"attributes", 64, [](std::size_t n) { return "<a" + numbered(n, " a", "='>'") + "/>"; }, attributes_of_one},
    {"metadata", 64,
     [](std::size_t n) { return json(",\"x\":1,\"@x\":[null," + object(numbered(n, ",\"m:a", "\":1")) + "]"); },
     attributes_of_one},
    {"attributes in total", 65536,
     [](std::size_t n) {
         return "<a>" + repeated(n / 64, "<b" + numbered(64, " a", "=''") + "/>") + repeated(n % 64, "<b a=''/>") +
                "</a>";
     },
     too_big("the request has more than 65536 attributes")},
    {"children", 2048, [](std::size_t n) { return aps(numbered(n, "<e", "/>")); }, children_of_one},
    {"members", 2048, [](std::size_t n) { return json(numbered(n, ",\"e", "\":1")); }, children_of_one},
    {"children: an array counts, and so do its items", 2046,
     [](std::size_t n) { return json(",\"x\":1,\"l\":[1" + repeated(n - 1, ",1") + "]"); }, children_of_one},
    {"children in two arrays", 1023,
     [](std::size_t n) {
         const std::string array = "\":[1" + repeated(n - 1, ",1") + "]";
         return json(",\"l" + array + ",\"m" + array);
     },
     children_of_one},
    {"elements in total", 65536,
     [](std::size_t n) {
         return "<a>" + repeated(31, "<b>" + repeated(2047, "<c/>") + "</b>") + "<b>" + repeated(n - 63490, "<c/>") +
                "</b></a>";
     },
     too_big("the request has more than 65536 elements")},
    {"the name of an element", 1024, [](std::size_t n) { return "<" + std::string(n, 'n') + "/>"; }, long_name},
    {"the name of an attribute and what is around it", 1024,
     [](std::size_t n) { return "<a " + std::string(n - 2, 'n') + "=''/>"; }, long_name},
    {"the value of an attribute", 1024, [](std::size_t n) { return "<a b='" + std::string(n, 'n') + "'/>"; },
     long_name},
    {"the name of a member", 1024, [](std::size_t n) { return "{\"" + std::string(n, 'n') + "\":1}"; }, long_name},
};

TEST(RequestLimits, AreReachedAndNotPassed) {
    for (const Limit &limit : limits) {
        EXPECT_EQ(scanned(limit.text(limit.most)), "nothing") << limit.what;
        EXPECT_EQ(scanned(limit.text(limit.most + 1)), limit.error) << limit.what;
    }
}

TEST(RequestLimits, ArePassedByFar) {
    EXPECT_EQ(scanned("{\"a\":" + repeated(100000, "[")), too_deep);
    EXPECT_EQ(refusal("<a" + numbered(80000, " a", "='>'") + "/>"), attributes_of_one);
    EXPECT_EQ(refusal(aps("<x" + numbered(20000, " xmlns:n", "='urn:x'") + "/>")), attributes_of_one);
    EXPECT_EQ(refusal(json(",\"@\":" + object(numbered(80000, ",\"m:a", "\":1")))), attributes_of_one);
    EXPECT_EQ(refusal(aps(numbered(10000, "<e", "/>"))), children_of_one);
    EXPECT_EQ(refusal(aps(numbered(100000, "<e", "/>"))), children_of_one);
    EXPECT_EQ(refusal(json(numbered(100000, ",\"e", "\":1"))), children_of_one);
    // Entries of an edit and a read that name the same, as they came with 2 GB and more.
    EXPECT_EQ(refusal(modules(repeated(20000, "<aps-module><name>x</name></aps-module>")), Kind::get), children_of_one);
    EXPECT_EQ(refusal(modules(entries(10000, "")), Kind::get), children_of_one);
}

TEST(RequestLimits, ConcernNothingElse) {
    const std::string longest(1024, 'n');
    EXPECT_EQ(scanned("<a>" + repeated(100, "<!-- <b> --><![CDATA[<b>]]><?p <b>?><c/><d x='>'></d>") + "</a>"),
              "nothing");
    EXPECT_EQ(scanned("<a>" + repeated(3, "<a" + numbered(64, " a", "='>'") + "/>") + "</a>"), "nothing");
    EXPECT_EQ(scanned("{\"" + longest + "\":\"" + longest + longest + "\"}"), "nothing");
}

// A tree that was not read from a text is not deeper either.
TEST(RequestLimits, LevelsOfAReadyTree) {
    const auto nested = [](std::size_t levels) {
        RequestNode node{"x", "urn:x"};
        for (std::size_t level = 2; level < levels; ++level) {
            RequestNode above{"x", "urn:x"};
            above.children.push_back(std::move(node));
            node = std::move(above);
        }
        std::vector<RequestNode> tops = ocpsm::framework::read_of("/aps");
        tops.front().children.push_back(std::move(node));
        return tops;
    };
    EXPECT_EQ(hand_over(nested(64), Kind::get), 1U);
    for (const std::size_t levels : {65U, 5000U}) {
        EXPECT_EQ(error_of([&] { (void)hand_over(nested(levels), Kind::edit); }),
                  "refused|too-big|/aps" + repeated(64, "/x") +
                      "|the request is nested deeper than 64 levels|the model needs eight");
    }
}

TEST(RequestLimits, NamespacesOfValues) {
    const std::string error = too_big("the values of the request bring along more than 16 MiB of namespace names");
    const auto values = [](std::size_t size, const std::string &value) {
        return aps("<x" + numbered(60, " xmlns:n", "='" + std::string(size, 'u') + "'") + ">" + repeated(2000, value) +
                   "</x>");
    };
    EXPECT_EQ(scanned(values(1024, "<a>1</a>")), "nothing");
    EXPECT_EQ(scanned(values(1024, "<a> n1:n2:n3:n4:n5:n6:n7:n8 </a>")), error);
    EXPECT_EQ(scanned(values(1024, "<a b='n1&#58;n2:n3:n4:n5:n6:n7:n8'/>")), error);
    EXPECT_EQ(scanned(values(1024, "<a><![CDATA[n1:n2:n3:n4:n5:n6:n7:n8]]></a>")), error);
    EXPECT_EQ(scanned(values(1024, "<a/>n1:n2:n3:n4:n5:n6:n7:n8")), "nothing"); // the parser refuses it
    EXPECT_EQ(scanned(values(10, "<a>n1:n2:n3:n4:n5:n6:n7:n8</a>")), "nothing");
}

TEST(RequestLimits, InstancesOfAList) {
    const std::string error =
        "refused|too-big|/aps/aps-modules|there are more than 1000 of aps-module|send them in pieces";
    EXPECT_EQ(hand_over(modules(entries(1000, "")), Kind::get), 1000U);
    EXPECT_EQ(refusal(modules(entries(1001, "")), Kind::get), error);
    EXPECT_EQ(hand_over(modules(entries(1000, "")), Kind::edit), 1U);
    EXPECT_EQ(refusal(modules(entries(1001, ""))), error);
    // What is named again is not counted again.
    EXPECT_EQ(hand_over(modules(entries(1000, "<config/>") + entries(1000, "<state/>")), Kind::get), 1000U);
    std::vector<RequestNode> paths;
    for (int number = 0; number < 1001; ++number) {
        const auto path = "/aps/aps-modules/aps-module[name=" + std::to_string(number) + "]";
        paths.push_back(ocpsm::framework::read_of(path).front());
        paths.push_back(paths.back());
    }
    EXPECT_EQ(error_of([&paths] { (void)hand_over(paths, Kind::get); }), error);
    paths.resize(2000);
    EXPECT_EQ(hand_over(paths, Kind::get), 1000U);
}

// A value for every configuration leaf below a node.
std::string everything_below(const lysc_node *parent) {
    std::string text;
    for (const lysc_node *node : ocpsm::models::Schema::openconfig().children(parent)) {
        const auto info = ocpsm::models::describe(*node);
        if (!info.config || lysc_is_key(node)) {
            continue;
        }
        const std::string value = info.kind != ocpsm::models::NodeKind::leaf ? everything_below(node)
                                  : !info.choices.empty()                    ? std::string(info.choices.front())
                                  : info.type == "boolean"                   ? "true"
                                                                             : "1";
        text += "<" + std::string(info.name) + ">" + value + "</" + std::string(info.name) + ">";
    }
    return text;
}

TEST(RequestLimits, AnEditOfAThousandModulesWithAllTheirLeavesIsNotTooBig) {
    const std::string all = everything_below(ocpsm::models::Schema::openconfig().find("/aps/aps-modules/aps-module"));
    EXPECT_NE(all.find("<target-attenuation>1</target-attenuation>"), std::string::npos);
    EXPECT_EQ(refusal(modules(entries(1000, all))), "nothing");
}

// ---- time ----

struct Growing {
    const char *name;
    Kind kind;
    std::function<std::string(std::size_t)> text; // of a size: 1, and 4 at the limits
};

const Growing growing[] = {
    {"siblings with distinct names", Kind::edit,
     [](std::size_t n) { return aps(numbered(512 * n, "<e", "><f>1</f></e>")); }},
    {"elements in groups", Kind::get,
     [](std::size_t n) { return aps(repeated(3 * n, "<b>" + numbered(2000, "<e", "/>") + "</b>")); }},
    {"attributes", Kind::edit,
     [](std::size_t n) {
         return aps(repeated(250 * n, "<b nc:operation='merge'" + numbered(60, " xmlns:n", "='u'") + "/>"));
     }},
    {"entries of an edit", Kind::edit,
     [](std::size_t n) { return modules(entries(250 * n, "<config><revertive>true</revertive></config>")); }},
    {"entries of a read", Kind::get, [](std::size_t n) { return modules(entries(250 * n, "<config/>")); }},
    {"equal entries of a read", Kind::get,
     [](std::size_t n) {
         return modules(repeated(500 * n, "<aps-module><name>x</name><config><name/></config></aps-module>"));
     }},
    {"json members", Kind::edit, [](std::size_t n) { return json(numbered(512 * n, ",\"e", "\":1")); }},
    {"json annotations", Kind::edit,
     [](std::size_t n) {
         return json(each(250 * n, [](std::size_t number) {
             const std::string name = "e" + std::to_string(number);
             return ",\"" + name + "\":1,\"@" + name + "\":{\"ietf-netconf:operation\":\"merge\"}";
         }));
     }},
    {"a long text", Kind::edit, [](std::size_t n) { return aps("<x>" + std::string(n << 20U, 'x') + "</x>"); }},
    {"names on the way down", Kind::edit,
     [](std::size_t n) {
         const std::string name(1000, 'n');
         return aps("<" + name + ">" + repeated(512 * n, "<" + name + "/>") + "</" + name + ">");
     }},
};

TEST(RequestTime, IsLinear) {
    for (const Growing &row : growing) {
        const auto work = [&row](std::size_t size) {
            return [&row, text = row.text(size)] {
                EXPECT_THAT(refusal(text, row.kind), testing::Not(testing::HasSubstr("too-big")));
            };
        };
        EXPECT_LT(measure::growth(work(1), work(4), 5), 8) << row.name;
    }
}

// ---- memory ----

struct Costly {
    const char *name;
    Kind kind;
    std::string text;
};

std::vector<Costly> costly() {
    const std::string settings =
        "<config><name>x</name><revertive>true</revertive><force-to-port>NONE</force-to-port></config>";
    const std::string groups = repeated(32, "<b>" + repeated(2000, "<a/>") + "</b>");
    std::string prefixes = "<x" + each(50, [](std::size_t number) {
                               const char name = static_cast<char>(number < 26 ? 'a' + number : 'A' + number - 26);
                               return " xmlns:" + std::string(1, name) + "='" + std::string(1000, 'u') + "'";
                           });
    prefixes += ">" + repeated(1000, "<y>a:b:c:d:e:f:g:h:i:j:k:l</y>") + "</x>";
    return {
        {"an entry named 400 times", Kind::edit,
         modules(repeated(400, "<aps-module><name>x</name>" + settings + "</aps-module>"))},
        {"400 entries", Kind::edit, modules(entries(400, settings))},
        {"20,000 equal entries of a read", Kind::get,
         modules(repeated(20000, "<aps-module><name>x</name></aps-module>"))},
        {"1,000 entries of a read", Kind::get, modules(entries(1000, "<config/>"))},
        {"elements", Kind::edit, aps(groups)},
        {"levels", Kind::edit, aps(repeated(1000, repeated(60, "<a>") + repeated(60, "</a>")))},
        {"attributes", Kind::edit, aps(repeated(1000, "<b" + numbered(60, " a", "=''") + "/>"))},
        {"namespaces", Kind::edit, aps(repeated(1000, "<b" + numbered(60, " xmlns:n", "='u'") + "/>"))},
        {"values with long namespaces", Kind::edit, aps(prefixes)},
        {"a long namespace", Kind::edit, aps("<x xmlns='" + std::string(1000, 'u') + "'>" + groups + "</x>")},
        {"a long text", Kind::edit, aps("<x>" + std::string(8U << 20U, 'x').substr(1000) + "</x>")},
        {"a long key", Kind::edit,
         modules("<aps-module><name>" + std::string(8000000, 'x') + "</name><config/></aps-module>")},
        {"a long wrong value", Kind::edit,
         modules("<aps-module><config><revertive>" + std::string(8000000, 'x') + "</revertive></config></aps-module>")},
        {"json numbers", Kind::edit,
         json(each(32,
                   [](std::size_t number) {
                       return ",\"b" + std::to_string(number) + "\":{\"a\":[1" + repeated(2000, ",1") + "]}";
                   }))},
        {"json annotations", Kind::edit,
         json(each(1000,
                   [](std::size_t number) {
                       return ",\"@e" + std::to_string(number) +
                              "\":" + object(numbered(60, ",\"ietf-netconf:a", "\":1"));
                   }))},
    };
}

TEST(RequestMemory, IsInProportionToTheText) {
    if (!measure::counts_memory) {
        GTEST_SKIP();
    }
    for (const Costly &row : costly()) {
        const std::size_t peak = measure::peak_of([&row] { return [&row] { (void)refusal(row.text, row.kind); }; });
        EXPECT_LE(peak, measure::allowed(row.text)) << row.name;
        EXPECT_NE(peak, 0U) << row.name;
    }
}

// ---- whatever stands in a text ----

std::string damaged(std::string text, std::mt19937 &random) {
    const std::string alphabet = "<>/&;\"'{}[]:,@!-?=\\ \n\xff\x01"
                                 "anx0";
    const auto pick = [&random](std::size_t end) { return static_cast<std::size_t>(random()) % end; };
    for (std::size_t damage = 1 + pick(3); damage > 0; --damage) {
        const std::size_t at = pick(text.size());
        switch (pick(3)) {
        case 0:
            text[at] = alphabet[pick(alphabet.size())];
            break;
        case 1:
            text.erase(at, 1 + pick(8));
            break;
        default:
            text.insert(at, text.substr(pick(text.size()), pick(40)));
            break;
        }
    }
    return text;
}

TEST(DamagedRequest, IsHandedOverOrRefused) {
    const std::string operation = "\"ietf-netconf:operation\"";
    const std::array<std::string, 2> seeds{
        "<config xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
            modules("<aps-module nc:operation=\"replace\"><name>0/1-PSM-OM</name><config><revertive "
                    "nc:operation=\"delete\"/><wait-to-restore-time>300</wait-to-restore-time></config></aps-module>") +
            "</config>",
        json(",\"aps-modules\":{\"aps-module\":[{\"@\":{" + operation +
             ":\"replace\"},\"name\":\"0/1-PSM-OM\",\"config\":{\"revertive\":[null],\"@revertive\":{" + operation +
             ":\"delete\"},\"wait-to-restore-time\":300}}]}")};
    std::mt19937 random(7);
    std::size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::string text = damaged(seeds.at(random() % seeds.size()), random);
        for (const Kind kind : {Kind::edit, Kind::get}) {
            try {
                (void)hand_over(text, kind);
            } catch (const ocpsm::Error &error) {
                ++refused;
                EXPECT_FALSE(error.tag.empty());
                EXPECT_STRNE(error.what(), "");
            }
        }
    }
    EXPECT_GT(refused, 2000U);
}

} // namespace
