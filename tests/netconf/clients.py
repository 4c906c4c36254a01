"""What a client of NETCONF does over SSH, with a library that knows nothing of this server.

clients.py PORT USER KEY
"""
import sys

from ncclient import manager
from ncclient.operations import RPCError
from ncclient.xml_ import to_ele

SPACE = "http://openconfig.net/yang/optical-transport-line-protection"
TIMER = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/wait-to-restore-time"


def connect():
    return manager.connect(host="127.0.0.1", port=int(sys.argv[1]), username=sys.argv[2], key_filename=sys.argv[3],
                           hostkey_verify=False, allow_agent=False, look_for_keys=False, timeout=60)


def config(value):
    return f"""<config xmlns="urn:ietf:params:xml:ns:netconf:base:1.0"><aps xmlns="{SPACE}"><aps-modules><aps-module>
        <name>0/1-PSM-OM</name><config><wait-to-restore-time>{value}</wait-to-restore-time></config>
        </aps-module></aps-modules></aps></config>"""


def value(session):
    data = session.get_config("running", filter=("xpath", TIMER)).data_ele
    return data.findtext(f".//{{{SPACE}}}wait-to-restore-time")


def refusal(request):
    try:
        request()
    except RPCError as error:
        return error.tag
    return "nothing was refused"


first = connect()
names = [line.split("module=")[1].split("&")[0] for line in first.server_capabilities if "module=" in line]
for name in names:
    assert first.get_schema(name).data.startswith(f"module {name} {{"), name
print(len(names), "schemas")

with first.locked("running"):
    first.edit_config(config(4000), target="running", test_option="set", error_option="stop-on-error")
    first.validate(to_ele(config(77)))
    print("edited:", value(first))
print("refused:", refusal(lambda: first.edit_config(config("soon"), target="running")))
print("by prefix:", first.get(filter=("xpath", ({"p": SPACE}, "//p:revertive"))).data_xml.count("<revertive>"))
print("trimmed:", first.get(filter=("subtree", f'<aps xmlns="{SPACE}"/>'), with_defaults="trim").data_xml.count("NONE"))

second = connect()
second.lock("running")
print("lock:", refusal(lambda: first.lock("running")))
print("edit:", refusal(lambda: first.edit_config(config(5000), target="running")))
first.kill_session(second.session_id)
first.lock("running")
first.unlock("running")
first.create_subscription()
print("after all:", value(first))
first.close_session()
