"""What the tests of the gNMI server share: stubs made from the protocol's text, a server, and short ways to write
paths, requests and whole answers."""
import importlib
import queue
import subprocess
import sys
import tempfile
import threading
import unittest

import grpc
from google.protobuf import text_format

SERVER, PROTO = sys.argv[1:3]
del sys.argv[1:3]
made = tempfile.TemporaryDirectory()
subprocess.run(
    ["protoc", "-I", PROTO, "--python_out", made.name, "--grpc_out", made.name,
     "--plugin=protoc-gen-grpc=/usr/bin/grpc_python_plugin", "gnmi.proto", "gnmi_ext.proto"], check=True)
sys.path.insert(0, made.name)
gnmi = importlib.import_module("gnmi_pb2")
gnmi_grpc = importlib.import_module("gnmi_pb2_grpc")

LONGEST = 200  # seconds that anything may take; only what is broken takes as long
MODEL = "openconfig-transport-line-protection"


class Server:
    """A server that ends with the test."""

    def __init__(self, *arguments, environment=None):
        self.process = subprocess.Popen([SERVER, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        env=environment)
        self.address = self.process.stdout.readline().strip()

    def tell(self, command):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().strip()

    def close(self):
        self.process.stdin.close()
        code = self.process.wait(LONGEST)
        self.process.stdout.close()
        return code


def path(text, origin="", target=""):
    """/a/b[key=value]/c; a value may hold anything but a closing bracket."""
    result = gnmi.Path(origin=origin, target=target)
    at = 1
    while at < len(text):
        end = at
        while end < len(text) and text[end] not in "/[":
            end += 1
        elem = result.elem.add(name=text[at:end])
        while end < len(text) and text[end] == "[":
            close = text.index("]", end)
            name, value = text[end + 1:close].split("=", 1)
            elem.key[name] = value
            end = close + 1
        at = end + 1
    return result


def words(message_path):
    """The other way."""
    return "".join("/" + elem.name + "".join(f"[{name}={elem.key[name]}]" for name in sorted(elem.key))
                   for elem in message_path.elem) or "/"


def value_words(value):
    """A value with its form: json_val 1."""
    form = value.WhichOneof("value")
    content = getattr(value, form)
    return form + " " + (content.decode() if isinstance(content, bytes) else str(content))


def lines(notification):
    """Each update and deletion in a line."""
    found = ["prefix " + words(notification.prefix)] if notification.HasField("prefix") else []
    for update in notification.update:
        times = f" ({update.duplicates} overtaken)" if update.duplicates else ""
        found.append(f"{words(update.path)} {value_words(update.val)}{times}")
    return found + ["deleted " + words(gone) for gone in notification.delete]


def module(slot, below=""):
    return f"/aps/aps-modules/aps-module[name=0/{slot}-PSM-OM]{below}"


class Stream:
    """A subscription: what it says is sent, what comes back is waited for."""

    def __init__(self, stub):
        self.requests = queue.Queue()
        self.call = stub.Subscribe(iter(self.requests.get, None), timeout=LONGEST)

    def send(self, request):
        self.requests.put(request)

    def poll(self):
        self.send(gnmi.SubscribeRequest(poll=gnmi.Poll()))

    def end_of_requests(self):
        self.requests.put(None)

    def next(self):
        response = next(self.call)
        return "sync" if response.sync_response else lines(response.update)

    def until_sync(self):
        """All lines up to the end of what is sent at first, sorted."""
        found = []
        while (response := self.next()) != "sync":
            found += response
        return found

    def end(self):
        """How the call ends."""
        try:
            for _ in self.call:
                pass
        except grpc.RpcError as error:
            return status(error)
        return "OK"

    def close(self):
        self.requests.put(None)
        self.call.cancel()


def status(error):
    return f"{error.code().name}: {error.details()}"


class Case(unittest.TestCase):
    """Tests of one server."""
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.server = Server()
        cls.channel = grpc.insecure_channel(cls.server.address)
        cls.stub = gnmi_grpc.gNMIStub(cls.channel)

    @classmethod
    def tearDownClass(cls):
        cls.channel.close()
        # A server that a sanitizer ends does not end with 0.
        assert cls.server.close() == 0

    def refused(self, call, request, **more):
        with self.assertRaises(grpc.RpcError) as caught:
            call(request, timeout=LONGEST, **more)
        return status(caught.exception)

    def get(self, *paths, **fields):
        """The answer's notifications as lines."""
        request = gnmi.GetRequest(path=[path(text) for text in paths], **fields)
        return [lines(notification) for notification in self.stub.Get(request, timeout=LONGEST).notification]

    def subscribe(self, **fields):
        stream = Stream(self.stub)
        self.addCleanup(stream.close)
        stream.send(gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(**fields)))
        return stream


class OwnServerCase(Case):
    """Tests each of which has a server of its own."""

    @classmethod
    def setUpClass(cls):
        pass

    @classmethod
    def tearDownClass(cls):
        pass

    def setUp(self):
        Case.setUpClass.__func__(self)

    def tearDown(self):
        self.doCleanups()
        Case.tearDownClass.__func__(self)


def message(text, kind):
    return text_format.Parse(text, kind())


def main():
    unittest.main(verbosity=2)
