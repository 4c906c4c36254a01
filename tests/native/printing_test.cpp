// The printed forms, whatever the texts.
#include <gtest/gtest.h>

#include "native/native_test.hpp"

namespace native_test {
namespace {

// An edit that locks out `value` in the slot of the node `node`.
Request lockout(std::string_view node, std::string_view value) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, node, merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "1", merge, false, 0);
    request.put(psm_path + "/lockout-from", ots, value, merge, false, 1);
    return request;
}

std::string lockout_xml(const std::string &node, const std::string &leaf) {
    return config(R"(  <active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg">
    <active-node>
      <node-name>)" +
                  node + R"(</node-name>
      <slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">
        <slot-id>1</slot-id>
        <psm>
          )" + leaf +
                  R"(
        </psm>
      </slot>
    </active-node>
  </active-nodes>
)");
}

std::string lockout_json(const std::string &node, const std::string &value) {
    return R"({
  "Vexlo-ORBIT-config-mda-cfg:active-nodes": {
    "active-node": [
      {
        "node-name": ")" +
           node + R"(",
        "Vexlo-ORBIT-tlm2200-ots-cfg:slot": [
          {
            "slot-id": 1,
            "psm": {
              "lockout-from": ")" +
           value + R"("
            }
          }
        ]
      }
    ]
  }
}
)";
}

TEST(Printing, XmlEscapesWhatMarkupMeans) {
    EXPECT_EQ(lockout("<&>\"'", "]]>\r\n\t%2f").xml(),
              lockout_xml("&lt;&amp;&gt;\"'", "<lockout-from>]]&gt;&#13;\n\t%2f</lockout-from>"));
}

TEST(Printing, XmlCarriesEveryCharacterOfXml) {
    const std::string text =
        "\xc2\x80 \xc3\xa9 \xe2\x82\xac \xed\x9f\xbf \xee\x80\x80 \xef\xbf\xbd \xf0\x90\x80\x80 \xf4\x8f\xbf\xbf";
    EXPECT_EQ(lockout("n", text).xml(), lockout_xml("n", "<lockout-from>" + text + "</lockout-from>"));
}

TEST(Printing, TheEmptyTextIsAnEmptyElement) {
    EXPECT_EQ(lockout("n", "").xml(), lockout_xml("n", "<lockout-from/>"));
}

TEST(Printing, XmlRefusesWhatItCannotCarry) {
    const std::string at =
        "refused invalid-value at '': /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from: '";
    const auto refusal = [](std::string_view text) {
        const Request request = lockout("n", text);
        return error_of([&] { request.net().to_xml(); });
    };
    const std::string why = "' holds characters that XML cannot carry";
    EXPECT_EQ(refusal(std::string_view("a\0b", 3)), at + "a\\x00b" + why);
    EXPECT_EQ(refusal("\x01"), at + "\\x01" + why);
    EXPECT_EQ(refusal("\x1f"), at + "\\x1f" + why);
    EXPECT_EQ(refusal("\xef\xbf\xbe"), at + "\xef\xbf\xbe" + why);
    EXPECT_EQ(refusal("\xef\xbf\xbf"), at + "\xef\xbf\xbf" + why);
    for (const char *broken :
         {"\x80", "\xc0\x80", "\xc1\xbf", "\xc3", "\xe2\x82", "\xe0\x80\x80", "\xe0\x81\x81", "\xe0\x9f\xbf",
          "\xf0\x80\x81\x81", "\xf0\x8f\xbf\xbd", "\xed\xa0\x80", "\xf0\x80\x80\x80", "\xf4\x90\x80\x80",
          "\xf5\x80\x80\x80", "\xff", "\xc3(", "\xe2\x82("}) {
        EXPECT_NE(refusal(broken), "none") << broken;
    }
    EXPECT_EQ(refusal("x\xff"), at + "x\\xff" + why);
}

TEST(Printing, XmlRefusesWhatAKeyCannotCarry) {
    const Request request = lockout("\x02", "working");
    EXPECT_EQ(error_of([&] { request.net().to_xml(); }),
              "refused invalid-value at '': /active-nodes/active-node[node-name='\\x02']/node-name: '\\x02' holds "
              "characters that XML cannot carry");
}

TEST(Printing, JsonEscapesWhatAStringCannotHold) {
    EXPECT_EQ(lockout("\"\\/", std::string_view("\0\x01\n\r\t\x1f\x7f\xe2\x82\xac<&", 12)).net().to_json(),
              lockout_json("\\\"\\\\/", "\\u0000\\u0001\\n\\u000d\\u0009\\u001f\\u007f\xe2\x82\xac<&"));
}

TEST(Printing, JsonRefusesWhatIsNotUtf8) {
    const Request request = lockout("n", "a\xff");
    EXPECT_EQ(
        error_of([&] { request.net().to_json(); }),
        "refused invalid-value at '': /active-nodes/active-node[node-name='n']/slot[slot-id='1']/psm/lockout-from: "
        "'a\\xff' is not UTF-8");
}

TEST(Printing, LongTextsArePrintedWholeAndCutInMessages) {
    const std::string text(100000, 'x');
    EXPECT_EQ(lockout("n", text).xml(), lockout_xml("n", "<lockout-from>" + text + "</lockout-from>"));
    EXPECT_EQ(lockout("n", text).net().to_json(), lockout_json("n", text));
    const Request request = lockout(text, text + "\x01");
    const std::string path = "/active-nodes/active-node[node-name='";
    EXPECT_EQ(error_of([&] { request.net().to_xml(); }),
              "refused invalid-value at '': " + path + std::string(1000 - path.size(), 'x') + "...: '" +
                  std::string(80, 'x') + "...' holds characters that XML cannot carry");
}

TEST(Printing, PathsQuoteTheirKeys) {
    const auto step = [](const char *node) {
        Request request = edit();
        request.put(node_path + "/node-name", mda, node, merge, false, 0);
        return steps(request);
    };
    EXPECT_EQ(step("a'b"), "merge /active-nodes/active-node[node-name=\"a'b\"]\n");
    EXPECT_EQ(step("a\"b"), "merge /active-nodes/active-node[node-name='a\"b']\n");
    EXPECT_EQ(step("'a\"b'"), "merge /active-nodes/active-node[node-name=concat('',\"'\",'a\"b',\"'\",'')]\n");
}

TEST(Printing, JsonWritesNumbersBooleansAndTextsByType) {
    Request request = edit();
    request.put(node_path + "/node-name", mda, "7", merge, false, 0);
    request.put(slot_path + "/slot-id", ots, "2", merge, false, 0);
    request.put(psm_path + "/relative-switch-threshold/psm-relative-switch-threshold", ots, "-25", merge, false, 1);
    request.put(psm_path + "/relative-switch-threshold/psm-relative-switch-threshold-offset", ots, "0", merge, false,
                1);
    request.put(psm_path + "/revertive/enable", ots, "true", merge, false, 1);
    request.put(psm_path + "/revertive/wtr", ots, none, erase, false, 1);
    request.put(psm_path + "/lockout-from", ots, "", merge, false, 1);
    EXPECT_EQ(request.net().to_json(), R"({
  "Vexlo-ORBIT-config-mda-cfg:active-nodes": {
    "active-node": [
      {
        "node-name": "7",
        "Vexlo-ORBIT-tlm2200-ots-cfg:slot": [
          {
            "slot-id": 2,
            "psm": {
              "relative-switch-threshold": {
                "psm-relative-switch-threshold": -25,
                "psm-relative-switch-threshold-offset": 0
              },
              "revertive": {
                "enable": true,
                "wtr": [null],
                "@wtr": {
                  "ietf-netconf:operation": "delete"
                }
              },
              "lockout-from": ""
            }
          }
        ]
      }
    ]
  }
}
)");
}

TEST(Printing, JsonShowsWhatALeafCannotHoldAsText) {
    const auto wtr = [](const char *value) {
        Request request = edit();
        request.put(psm_path + "/revertive/wtr", ots, value, merge, false, 1);
        const std::string json = request.net().to_json();
        const std::size_t start = json.find("\"wtr\": ") + 7;
        return json.substr(start, json.find('\n', start) - start);
    };
    EXPECT_EQ(wtr("300000"), "300000");
    EXPECT_EQ(wtr("-1"), "\"-1\"");
    EXPECT_EQ(wtr("007"), "\"007\"");
    EXPECT_EQ(wtr("1e5"), "\"1e5\"");
    EXPECT_EQ(wtr(""), "\"\"");
    EXPECT_EQ(wtr("-"), "\"-\"");
    EXPECT_EQ(wtr("4294967296"), "\"4294967296\"");
}

TEST(Printing, JsonPutsOperationsOfContainersAndEntriesInside) {
    Request request = edit();
    request.put(interface_path + "/interface-name", ifmgr, "A", merge, false, 1);
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 1);
    request.put(optics_path, optics, none, remove, false, 1);
    request.put(threshold_path, optics, none, merge, true, 1);
    request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 1);
    request.put(interface_path, ifmgr, none, remove, true, 1);
    request.put(interface_path + "/interface-name", ifmgr, "B", remove, false, 1);
    request.put(interface_path + "/active", ifmgr, "act", remove, false, 1);
    EXPECT_EQ(request.net().to_json(), R"({
  "Vexlo-ORBIT-ifmgr-cfg:interface-configurations": {
    "interface-configuration": [
      {
        "active": "act",
        "interface-name": "A",
        "Vexlo-ORBIT-controller-optics-cfg:optics": {
          "@": {
            "ietf-netconf:operation": "replace"
          },
          "rx-thresholds": {
            "rx-threshold": [
              {
                "rx-threshold-type": "low"
              }
            ]
          }
        }
      },
      {
        "@": {
          "ietf-netconf:operation": "remove"
        },
        "active": "act",
        "interface-name": "B"
      }
    ]
  }
}
)");
}

TEST(Printing, JsonSelectsWithNull) {
    Request request = read();
    request.put(info_path + "/port-status", ots_oper, "", merge, false, 1);
    request.put(history_path, pm, none, merge, true, 0);
    EXPECT_EQ(request.net().to_json(), R"({
  "Vexlo-ORBIT-controller-tlm2200-ots-oper:ots-oper": {
    "ots-ports": {
      "ots-port": [
        {
          "name": [null],
          "ots-info": {
            "port-status": [null]
          }
        }
      ]
    }
  },
  "Vexlo-ORBIT-pmengine-oper:performance-management-history": {
    "global": {
      "periodic": {
        "optics-history": {
          "optics-port-histories": {
            "optics-port-history": [
              {}
            ]
          }
        }
      }
    }
  }
}
)");
}

TEST(Printing, ARequestWithoutContentIsEmpty) {
    EXPECT_EQ(read().xml(), "<nc:filter xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" type=\"subtree\"/>\n");
    EXPECT_EQ(read().net().to_json(), "{}\n");
}

} // namespace
} // namespace native_test
