#!/usr/bin/python3
"""A gNMI client on a page: reads, changes and watches a line system. Debian: python3-grpcio, protobuf-compiler-grpc.

    gnmi_client.py ADDRESS get PATH...           e.g. /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config
    gnmi_client.py ADDRESS set PATH=JSON...      all of them or none
    gnmi_client.py ADDRESS delete PATH...
    gnmi_client.py ADDRESS watch COUNT PATH...   what is there, then COUNT changes
"""
import os
import re
import subprocess
import sys
import tempfile

import grpc

PROTO = os.path.join(os.path.dirname(os.path.realpath(__file__)), "../../proto")
with tempfile.TemporaryDirectory() as made:
    subprocess.run(["protoc", "-I", PROTO, "--python_out", made, "--grpc_out", made,
                    "--plugin=protoc-gen-grpc=/usr/bin/grpc_python_plugin", "gnmi.proto", "gnmi_ext.proto"], check=True)
    sys.path.insert(0, made)
    sys.dont_write_bytecode = True
    import gnmi_pb2 as gnmi
    import gnmi_pb2_grpc


def path(text):
    """The value of a key may hold a slash: 0/1-PSM-OM."""
    result = gnmi.Path()
    for name, keys in re.findall(r"/([^/\[]+)((?:\[[^\]]*\])*)", text):
        result.elem.add(name=name, key=dict(re.findall(r"\[([^=]+)=([^\]]*)\]", keys)))
    return result


def show(notification):
    for update in notification.update:
        print(words(update.path), update.val.json_ietf_val.decode())
    for gone in notification.delete:
        print(words(gone), "deleted")


def words(gnmi_path):
    return "".join("/" + elem.name + "".join(f"[{key}={value}]" for key, value in sorted(elem.key.items()))
                   for elem in gnmi_path.elem) or "/"


def update(setting):
    name, value = re.fullmatch(r"((?:[^=\[]|\[[^\]]*\])*)=(.*)", setting).groups()
    return gnmi.Update(path=path(name), val=gnmi.TypedValue(json_ietf_val=value.encode()))


def watch(stub, count, paths):
    subscriptions = [gnmi.Subscription(path=path(one), mode=gnmi.ON_CHANGE) for one in paths]
    request = gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(subscription=subscriptions, encoding=gnmi.JSON_IETF))
    synchronised = False
    for response in stub.Subscribe(iter([request])):
        show(response.update)
        count -= 1 if synchronised else 0
        synchronised = synchronised or response.sync_response
        if synchronised and count == 0:
            return


def run(stub, verb, *words_behind):
    if verb == "get":
        request = gnmi.GetRequest(path=[path(one) for one in words_behind], encoding=gnmi.JSON_IETF)
        for notification in stub.Get(request).notification:
            show(notification)
    elif verb == "set":
        stub.Set(gnmi.SetRequest(update=[update(one) for one in words_behind]))
    elif verb == "delete":
        stub.Set(gnmi.SetRequest(delete=[path(one) for one in words_behind]))
    elif verb == "watch":
        watch(stub, int(words_behind[0]), words_behind[1:])
    else:
        sys.exit(__doc__)


if len(sys.argv) < 3:
    sys.exit(__doc__)
try:
    with grpc.insecure_channel(sys.argv[1]) as channel:
        run(gnmi_pb2_grpc.gNMIStub(channel), *sys.argv[2:])
except grpc.RpcError as error:
    sys.exit(f"{error.code().name}: {error.details()}")
