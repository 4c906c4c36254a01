"""Where the server listens and whom it lets in: loopback, TLS, certificates, passwords, reflection, its end."""
import os
import subprocess
import tempfile
import unittest

import client
from client import LONGEST, Server, Stream, gnmi, gnmi_grpc, grpc, main, path, status


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Authority:
    """Signs certificates; all of it is in files NAME.pem and NAME.key."""

    def __init__(self, directory, name):
        self.file = os.path.join(directory, name)
        openssl("req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2",
                "-subj", "/CN=" + name, "-keyout", self.file + ".key", "-out", self.file + ".pem")

    def sign(self, name):
        file = self.file + "-" + name
        openssl("req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-subj", "/CN=" + name,
                "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", file + ".key", "-out", file + ".req")
        openssl("x509", "-req", "-in", file + ".req", "-CA", self.file + ".pem", "-CAkey", self.file + ".key",
                "-CAcreateserial", "-days", "2", "-copy_extensions", "copy", "-out", file + ".pem")
        return file


def content(file):
    with open(file, "rb") as stream:
        return stream.read()


def served(channel):
    """What a client is told: the version, or why not."""
    with channel:
        try:
            return gnmi_grpc.gNMIStub(channel).Capabilities(gnmi.CapabilityRequest(), timeout=LONGEST).gNMI_version
        except grpc.RpcError as error:
            return error.code().name


def secure(server, authority, pair=None):
    credentials = grpc.ssl_channel_credentials(
        content(authority.file + ".pem"), *([content(pair + ".key"), content(pair + ".pem")] if pair else []))
    return served(grpc.secure_channel(server.address, credentials))


class Transport(unittest.TestCase):
    maxDiff = None

    def start(self, *arguments):
        server = Server(*arguments)
        self.addCleanup(lambda: self.assertEqual(server.close(), 0))
        return server

    def refusal(self, *arguments):
        server = Server(*arguments)
        self.assertEqual(server.close(), 1)
        return server.address

    def test_addresses(self):
        self.assertRegex(self.start("127.0.0.1:0").address, r"^127\.0\.0\.1:[1-9][0-9]*$")
        self.assertRegex(self.start("localhost:0").address, r"^localhost:[1-9][0-9]*$")
        for address in ["", "127.0.0.1", "127.0.0.1:", ":1", "127.0.0.1:70000", "127.0.0.1:1x", "::1:0", "unix:x"]:
            self.assertEqual(self.refusal(address), f"refused: no address to listen on: {address}; write HOST:PORT, for "
                                                    "example 127.0.0.1:9339")
        taken = self.start("127.0.0.1:0").address
        self.assertEqual(self.refusal(taken), f"refused: cannot listen on {taken}; is the address another program's?")

    def test_plaintext_is_for_loopback(self):
        for host, shown in [("0.0.0.0", "0.0.0.0"), ("[::]", "::"), ("192.0.2.1", "192.0.2.1"),
                            ("127.evil.example", "127.evil.example")]:
            self.assertEqual(self.refusal(host + ":0"),
                             f"refused: without TLS everybody on the way to {shown} could read and change requests; "
                             "listen on 127.0.0.1, or name a certificate and its key")

    def test_tls(self):
        with tempfile.TemporaryDirectory() as directory:
            ours, theirs = Authority(directory, "ours"), Authority(directory, "theirs")
            pair, client_pair, stranger = ours.sign("server"), ours.sign("client"), theirs.sign("client")
            server = self.start("127.0.0.1:0", pair + ".pem", pair + ".key")
            self.assertEqual(secure(server, ours), "0.10.0")
            self.assertEqual(secure(server, theirs), "UNAVAILABLE")
            self.assertEqual(served(grpc.insecure_channel(server.address)), "UNAVAILABLE")
            mutual = self.start("127.0.0.1:0", pair + ".pem", pair + ".key", ours.file + ".pem")
            self.assertEqual(secure(mutual, ours, client_pair), "0.10.0")
            self.assertEqual(secure(mutual, ours, stranger), "UNAVAILABLE")
            self.assertEqual(secure(mutual, ours), "UNAVAILABLE")
            # With TLS it need not be loopback.
            everywhere = self.start("0.0.0.0:0", pair + ".pem", pair + ".key", ours.file + ".pem")
            everywhere.address = everywhere.address.replace("0.0.0.0", "127.0.0.1")
            self.assertEqual(secure(everywhere, ours, client_pair), "0.10.0")

    def test_certificates_that_cannot_be_used(self):
        with tempfile.TemporaryDirectory() as directory:
            ours = Authority(directory, "ours")
            one, other = ours.sign("one"), ours.sign("other")
            for certificate, key in [(one + ".pem", other + ".key"), (one + ".key", one + ".pem"), ("absent", "absent")]:
                self.assertEqual(self.refusal("127.0.0.1:0", certificate, key),
                                 "refused: cannot listen on 127.0.0.1:0; is the address another program's, or are "
                                 "certificate and key no pair?")

    def test_user_names_and_passwords_are_refused(self):
        server = self.start()
        with grpc.insecure_channel(server.address) as channel:
            stub = gnmi_grpc.gNMIStub(channel)
            expected = ("UNAUTHENTICATED: user names and passwords are not known here; leave them out of the metadata")
            metadata = [("username", "admin"), ("password", "admin")]
            calls = [(stub.Capabilities, gnmi.CapabilityRequest()), (stub.Get, gnmi.GetRequest()),
                     (stub.Set, gnmi.SetRequest())]
            for call, request in calls:
                with self.assertRaises(grpc.RpcError) as caught:
                    call(request, metadata=metadata, timeout=LONGEST)
                self.assertEqual(status(caught.exception), expected)
            with self.assertRaises(grpc.RpcError) as caught:
                list(stub.Subscribe(iter([]), metadata=metadata[:1], timeout=LONGEST))
            self.assertEqual(status(caught.exception), expected)

    def test_a_message_has_a_bound(self):
        server = self.start()
        with grpc.insecure_channel(server.address) as channel:
            with self.assertRaises(grpc.RpcError) as caught:
                gnmi_grpc.gNMIStub(channel).Set(gnmi.SetRequest(update=[gnmi.Update(
                    path=path("/aps"), val=gnmi.TypedValue(json_val=b" " * (4 << 20)))]), timeout=LONGEST)
            self.assertEqual(caught.exception.code(), grpc.StatusCode.RESOURCE_EXHAUSTED)
            self.assertEqual(gnmi_grpc.gNMIStub(channel).Capabilities(gnmi.CapabilityRequest()).gNMI_version, "0.10.0")

    def test_reflection_lists_the_service(self):
        server = self.start()
        with grpc.insecure_channel(server.address) as channel:
            call = channel.stream_stream("/grpc.reflection.v1alpha.ServerReflection/ServerReflectionInfo")
            [answer] = call(iter([b"\x3a\x00"]), timeout=LONGEST)  # list_services
            self.assertIn(b"\x0a\x09gnmi.gNMI", answer)

    def test_the_end_of_the_server_ends_subscriptions(self):
        server = Server()
        with grpc.insecure_channel(server.address) as channel:
            stream = Stream(gnmi_grpc.gNMIStub(channel))
            stream.send(gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(subscription=[
                gnmi.Subscription(path=path("/"), mode=gnmi.ON_CHANGE)])))
            stream.until_sync()
            self.assertEqual(server.close(), 0)
            self.assertEqual(stream.end(), "UNAVAILABLE: the server stops")
            stream.close()


main()
