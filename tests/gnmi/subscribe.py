"""Subscribe: modes, polls, samples, deletions, slow and killed clients, errors. The server's clock stands still until a
test lets time pass, and what is new is looked for when a test says so."""
import subprocess
import sys

import client
from client import LONGEST, OwnServerCase, Server, Stream, gnmi, gnmi_grpc, grpc, main, message, module, path

ACTIVE = "/.../active-path"
POWER = module(1, "/ports/line-primary-in/state/optical-power/instant")
TIMER = module(1, "/config/wait-to-restore-time")
LIST = gnmi.SubscriptionList
MILLISECOND = 1_000_000


def to(text, mode=gnmi.TARGET_DEFINED, **fields):
    return gnmi.Subscription(path=path(text), mode=mode, **fields)


def on_change(text):
    return to(text, gnmi.ON_CHANGE)


class Subscribe(OwnServerCase):
    def happens(self, *commands):
        for command in [*commands, "news"]:
            self.assertEqual(self.server.tell(command), "done")

    def set_timer(self, value):
        self.stub.Set(gnmi.SetRequest(update=[gnmi.Update(path=path(TIMER), val=gnmi.TypedValue(uint_val=value))]))

    # ---- once and polls ----

    def test_once(self):
        stream = self.subscribe(mode=LIST.ONCE, subscription=[to(ACTIVE), to(TIMER)], encoding=gnmi.PROTO)
        self.assertEqual(sorted(stream.until_sync()), [
            module(1, "/config/wait-to-restore-time") + " uint_val 10000",
            module(1, "/state/active-path") + " string_val PRIMARY",
            module(3, "/state/active-path") + " string_val SECONDARY"])
        self.assertEqual(stream.end(), "OK")

    def test_once_in_every_encoding_and_with_a_prefix(self):
        for encoding, value in [(gnmi.JSON, 'json_val "PRIMARY"'), (gnmi.PROTO, "string_val PRIMARY"),
                                (gnmi.JSON_IETF, f'json_ietf_val "{client.MODEL}:PRIMARY"')]:
            stream = self.subscribe(mode=LIST.ONCE, prefix=path(module(1), target="lab", origin="openconfig"),
                                    subscription=[to("/state/active-path")], encoding=encoding)
            self.assertEqual(stream.until_sync(), ["prefix " + module(1), "/state/active-path " + value])

    def test_a_whole_message(self):
        stream = self.subscribe(mode=LIST.ONCE, prefix=gnmi.Path(target="lab"),
                                subscription=[to(module(1, "/config/revertive"))])
        response = next(stream.call)
        self.assertGreater(response.update.timestamp, 1_500_000_000_000_000_000)
        response.update.timestamp = 0
        self.assertEqual(response, message(
            """update { prefix { target: "lab" } update {
                 path { elem { name: "aps" } elem { name: "aps-modules" }
                   elem { name: "aps-module" key { key: "name" value: "0/1-PSM-OM" } }
                   elem { name: "config" } elem { name: "revertive" } }
                 val { json_val: "true" } } }""", gnmi.SubscribeResponse))
        self.assertEqual(next(stream.call), gnmi.SubscribeResponse(sync_response=True))
        self.assertEqual(stream.end(), "OK")

    def test_once_with_updates_only(self):
        stream = self.subscribe(mode=LIST.ONCE, subscription=[to(ACTIVE)], updates_only=True)
        self.assertEqual(stream.until_sync(), [])
        self.assertEqual(stream.end(), "OK")

    def test_polls(self):
        stream = self.subscribe(mode=LIST.POLL, subscription=[to(TIMER)])
        self.assertEqual(stream.until_sync(), [TIMER + " json_val 10000"])
        for value in (7, 8):
            self.set_timer(value)
            stream.poll()
            self.assertEqual(stream.until_sync(), [f"{TIMER} json_val {value}"])
        for _ in range(3):  # one after the other, though nobody has waited
            stream.poll()
        for _ in range(3):
            self.assertEqual(stream.until_sync(), [TIMER + " json_val 8"])
        stream.poll()
        stream.end_of_requests()
        self.assertEqual(stream.until_sync(), [TIMER + " json_val 8"])
        self.assertEqual(stream.end(), "OK")

    def test_a_poll_that_comes_with_the_list(self):
        stream = self.subscribe(mode=LIST.POLL, subscription=[to(TIMER)])
        stream.poll()
        for _ in range(2):
            self.assertEqual(stream.until_sync(), [TIMER + " json_val 10000"])

    # ---- streams ----

    def test_on_change(self):
        stream = self.subscribe(subscription=[on_change(ACTIVE)])
        self.assertEqual(stream.until_sync(), [module(1, "/state/active-path") + ' json_val "PRIMARY"',
                                               module(3, "/state/active-path") + ' json_val "SECONDARY"'])
        stream.end_of_requests()  # a stream goes on
        self.happens("cut 1 primary", "tick 100")
        self.assertEqual(stream.next(), [module(1, "/state/active-path") + ' json_val "SECONDARY"'])
        self.happens("splice 1 primary", "tick 60000")
        self.assertEqual(stream.next(), [module(1, "/state/active-path") + ' json_val "PRIMARY"'])

    def test_what_comes_and_goes(self):
        stream = self.subscribe(subscription=[on_change("/aps/aps-modules/aps-module/config/revertive")])
        stream.until_sync()
        self.happens("pull 3")
        self.assertEqual(stream.next(), ["deleted " + module(3, "/config/revertive")])
        self.happens("fit 3")
        self.assertEqual(stream.next(), [module(3, "/config/revertive") + " json_val false"])

    def test_a_deleted_leaf_and_updates_only(self):
        stream = self.subscribe(subscription=[on_change(TIMER)], updates_only=True)
        self.assertEqual(stream.until_sync(), [])
        self.stub.Set(gnmi.SetRequest(delete=[path(TIMER)]))
        self.happens()
        self.assertEqual(stream.next(), ["deleted " + TIMER])

    def test_samples(self):
        stream = self.subscribe(subscription=[to(POWER, gnmi.SAMPLE, sample_interval=500 * MILLISECOND)])
        self.assertEqual(stream.until_sync(), [POWER + " json_val -12.34"])
        for _ in range(3):
            self.happens("pass 500")
            self.assertEqual(stream.next(), [POWER + " json_val -12.34"])
        self.happens("cut 1 primary", "tick 100", "pass 499", "pass 1")
        self.assertEqual(stream.next(), [POWER + " json_val -40.0"])

    def test_redundant_samples_and_heartbeats(self):
        stream = self.subscribe(subscription=[to(POWER, gnmi.SAMPLE, sample_interval=1000 * MILLISECOND,
                                                 suppress_redundant=True, heartbeat_interval=10_000 * MILLISECOND)])
        stream.until_sync()
        self.happens("pass 1000", "pass 1000", "cut 1 primary", "tick 100", "pass 1000")
        self.assertEqual(stream.next(), [POWER + " json_val -40.0"])
        self.happens("pass 7000")
        self.assertEqual(stream.next(), [POWER + " json_val -40.0"])

    def test_modes_beside_each_other(self):
        stream = self.subscribe(subscription=[to(POWER, gnmi.SAMPLE, sample_interval=700 * MILLISECOND),
                                              on_change(TIMER)])
        stream.until_sync()
        self.set_timer(7)
        self.happens()
        self.assertEqual(stream.next(), [TIMER + " json_val 7"])
        self.happens("pass 700")
        self.assertEqual(stream.next(), [POWER + " json_val -12.34"])

    def test_target_defined(self):
        stream = self.subscribe(subscription=[to(module(1))])
        self.assertEqual(len(stream.until_sync()), 52)
        self.set_timer(7)
        self.happens()
        self.assertEqual(stream.next(), [TIMER + " json_val 7",
                                         module(1, "/state/wait-to-restore-time") + " json_val 7"])
        self.happens("pass 1000")  # four ports have five measurements, one has four
        self.assertEqual(len(stream.next()), 24)

    # ---- slow and many ----

    def test_a_slow_subscriber_gets_the_newest_and_stops_nobody(self):
        fields = {"subscription": [to("/", gnmi.SAMPLE, sample_interval=100 * MILLISECOND)], "encoding": gnmi.JSON_IETF}
        # A client that takes no more than it reads: its window stays at 64 KiB, which is five samples.
        window = [("grpc.http2.bdp_probe", 0), ("grpc.http2.lookahead_bytes", 65_535)]
        with grpc.insecure_channel(self.server.address, options=window) as channel:
            slow = Stream(gnmi_grpc.gNMIStub(channel))
            slow.send(gnmi.SubscribeRequest(subscribe=LIST(**fields)))
            self.assertEqual(len(slow.next()), 104)
            quick = self.subscribe(**fields)
            self.assertEqual(len(quick.until_sync()), 104)
            samples = 150
            for _ in range(samples):
                self.assertEqual(self.server.tell("pass 100"), "done")
                self.assertEqual(len(quick.next()), 104)
            self.set_timer(77)
            self.assertEqual(self.server.tell("pass 100"), "done")
            quick.next()
            received = overtaken = 0
            last = None
            while last != b"77":
                for update in next(slow.call).update.update:
                    if update.path == path(TIMER):
                        received += 1
                        overtaken += update.duplicates
                        last = update.val.json_ietf_val
            slow.close()
        self.assertEqual(received + overtaken, samples + 1)
        self.assertLess(received, 30)

    def test_a_subscriber_that_never_reads_costs_no_memory(self):
        with open(client.SERVER, "rb") as program:
            if b"__asan_init" in program.read():
                self.skipTest("a sanitizer keeps what has been freed")
        fields = {"subscription": [to("/", gnmi.SAMPLE, sample_interval=100 * MILLISECOND)]}
        window = [("grpc.http2.bdp_probe", 0), ("grpc.http2.lookahead_bytes", 65_535)]
        with grpc.insecure_channel(self.server.address, options=window) as channel:
            idle = [Stream(gnmi_grpc.gNMIStub(channel)) for _ in range(8)]
            for stream in idle:
                stream.send(gnmi.SubscribeRequest(subscribe=LIST(**fields)))
            quick = self.subscribe(**fields)
            quick.until_sync()
            memory = []
            for _ in range(3):
                for _ in range(40):
                    self.assertEqual(self.server.tell("pass 100"), "done")
                    quick.next()
                memory.append(int(self.server.tell("memory")))
            # Without a bound 40 samples of 8 streams are 4 MB, and more while they are no messages yet.
            self.assertLess(memory[2] - memory[1], 1_500)
            for stream in idle:
                stream.close()

    def test_many_subscribers_see_the_last_of_many_changes(self):
        streams = [self.subscribe(subscription=[on_change(TIMER)]) for _ in range(64)]
        for stream in streams:
            stream.until_sync()
        self.assertEqual(self.server.tell("burst 500"), "done")
        for stream in streams:
            while stream.next() != [TIMER + " json_val 500"]:
                pass

    def test_subscribers_are_counted_and_killed_clients_are_not(self):
        # 200 streams, said to be there, then killed: a third such client would be too much if they stayed.
        program = """
import sys
sys.argv = ["", sys.argv[1], sys.argv[2], sys.argv[3]]
sys.path.insert(0, sys.argv.pop())
from client import *
channel = grpc.insecure_channel(sys.stdin.readline().strip())
streams = [Stream(gnmi_grpc.gNMIStub(channel)) for _ in range(200)]
for stream in streams:
    stream.send(gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(subscription=[
        gnmi.Subscription(path=path("/.../active-path"), mode=gnmi.ON_CHANGE)])))
try:
    for stream in streams:
        stream.until_sync()
    print("there", flush=True)
except grpc.RpcError as error:
    print(status(error), flush=True)
sys.stdin.read()
"""

        def start():
            started = subprocess.Popen(
                [sys.executable, "-B", "-c", program, client.SERVER, client.PROTO,
                 client.__file__.rsplit("/", 1)[0]], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
            started.stdin.write(self.server.address + "\n")
            started.stdin.flush()
            return started, started.stdout.readline().strip()

        def kill(process):
            process.kill()
            process.wait(LONGEST)
            process.stdin.close()
            process.stdout.close()

        first, said = start()
        self.assertEqual(said, "there")
        second, said = start()
        self.assertEqual(said, "RESOURCE_EXHAUSTED: there are 256 subscribers already")
        kill(second)
        kill(first)
        for _ in range(20):  # what is killed is noticed soon, not at once
            third, said = start()
            kill(third)
            if said == "there":
                break
        self.assertEqual(said, "there")

    # ---- errors ----

    def test_errors(self):
        rows = [
            ({}, "INVALID_ARGUMENT: a subscription list has no subscription"),
            ({"subscription": [to("/nothing")]}, "NOT_FOUND: the model has no such node at /nothing"),
            ({"subscription": [to("/aps", gnmi.SAMPLE, sample_interval=1)]},
             "INVALID_ARGUMENT: the sample_interval is less than 100 ms at /aps"),
            ({"subscription": [to("/aps", gnmi.ON_CHANGE, heartbeat_interval=1)]},
             "INVALID_ARGUMENT: the heartbeat_interval is less than 100 ms at /aps"),
            ({"subscription": [to("/aps")], "encoding": gnmi.ASCII},
             "UNIMPLEMENTED: the encodings are JSON, JSON_IETF and PROTO"),
            ({"subscription": [to("/aps")], "qos": gnmi.QOSMarking(marking=1)},
             "UNIMPLEMENTED: packets are not marked: leave qos out"),
            ({"subscription": [to("/aps")] * 1025},
             "RESOURCE_EXHAUSTED: a subscription list has more than 1024 subscriptions"),
        ]
        for fields, expected in rows:
            self.assertEqual(self.subscribe(**fields).end(), expected)

    def test_requests_out_of_order(self):
        stream = Stream(self.stub)
        stream.poll()
        self.assertEqual(stream.end(), "INVALID_ARGUMENT: a Subscribe begins with a subscription list")
        stream = Stream(self.stub)
        stream.end_of_requests()
        self.assertEqual(stream.end(), "INVALID_ARGUMENT: a Subscribe begins with a subscription list")
        stream = self.subscribe(subscription=[to(TIMER)])
        stream.poll()
        self.assertEqual(stream.end(), "INVALID_ARGUMENT: a poll is for a subscription list of the mode POLL")
        stream = self.subscribe(subscription=[to(TIMER)], mode=LIST.POLL)
        stream.until_sync()
        stream.send(gnmi.SubscribeRequest(subscribe=LIST(subscription=[to("/aps")])))
        self.assertEqual(stream.end(), "INVALID_ARGUMENT: a Subscribe has one subscription list, and polls behind it")

    def test_aliases_are_refused(self):
        # Field 2 of the request, and field 3 of the list, as they were before they were given up.
        stream = Stream(self.stub)
        stream.send(gnmi.SubscribeRequest.FromString(b"\x12\x00"))
        self.assertEqual(stream.end(), "UNIMPLEMENTED: aliases are not served")
        stream = Stream(self.stub)
        stream.send(gnmi.SubscribeRequest(subscribe=LIST.FromString(
            LIST(subscription=[to("/aps")]).SerializeToString() + b"\x18\x01")))
        self.assertEqual(stream.end(), "UNIMPLEMENTED: aliases are not served")


main()
