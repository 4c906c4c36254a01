"""Capabilities and Get: encodings, kinds of data, prefixes, wildcards, errors."""
import json

from client import MODEL, Case, gnmi, grpc, main, message, module, path

CONFIG = {
    "name": "0/1-PSM-OM", "revertive": True, "wait-to-restore-time": 10000, "primary-switch-threshold": -25.0,
    "primary-switch-hysteresis": 1.0, "secondary-switch-threshold": -28.0, "relative-switch-threshold": 0.0,
    "relative-switch-threshold-offset": 0.0, "force-to-port": "NONE"}
DECIMALS = [name for name, value in CONFIG.items() if isinstance(value, float)]
# RFC 7951: decimal64 as strings, names with the module's where the document begins.
CONFIG_IETF = {f"{MODEL}:{name}": str(value) if name in DECIMALS else value for name, value in CONFIG.items()}


def compact(value):
    return json.dumps(value, separators=(",", ":"))


class Capabilities(Case):
    def test_model_encodings_and_version(self):
        self.assertEqual(
            self.stub.Capabilities(gnmi.CapabilityRequest()),
            message(f"""supported_models {{
                name: "{MODEL}"
                organization: "OpenConfig working group (model); this text is an edition of its own"
                version: "2018-11-21"
            }}
            supported_encodings: JSON supported_encodings: PROTO supported_encodings: JSON_IETF
            gNMI_version: "0.10.0" """, gnmi.CapabilityResponse))


class Get(Case):
    def test_json(self):
        self.assertEqual(self.get(module(1, "/config")), [[f"{module(1, '/config')} json_val {compact(CONFIG)}"]])

    def test_json_ietf(self):
        self.assertEqual(self.get(module(1, "/config"), encoding=gnmi.JSON_IETF),
                         [[f"{module(1, '/config')} json_ietf_val {compact(CONFIG_IETF)}"]])

    def test_proto_has_an_update_for_each_leaf(self):
        forms = {str: "string_val", bool: "bool_val", int: "uint_val", float: "double_val"}
        self.assertEqual(self.get(module(1, "/config"), encoding=gnmi.PROTO),
                         [[f"{module(1, '/config')}/{name} {forms[type(value)]} {value}"
                           for name, value in CONFIG.items()]])

    def test_leaves(self):
        leaves = [module(1, "/config/wait-to-restore-time"), module(1, "/state/active-path"),
                  module(1, "/ports/line-primary-in/state/optical-power/instant")]
        self.assertEqual(self.get(*leaves), [[leaves[0] + " json_val 10000"], [leaves[1] + ' json_val "PRIMARY"'],
                                             [leaves[2] + " json_val -12.34"]])
        self.assertEqual(self.get(*leaves, encoding=gnmi.JSON_IETF),
                         [[leaves[0] + " json_ietf_val 10000"], [leaves[1] + f' json_ietf_val "{MODEL}:PRIMARY"'],
                          [leaves[2] + ' json_ietf_val "-12.34"']])

    def test_the_root_and_kinds_of_data(self):
        def keys(value):
            """The names of all leaves of the first module."""
            found = set()
            for name, below in value.items():
                found |= {f"{name}/{one}" for one in keys(below)} if isinstance(below, dict) else {name}
            return found

        def first_module(kind):
            [[line]] = self.get("/", type=kind)
            self.assertTrue(line.startswith("/ json_val "))
            modules = json.loads(line.split(" ", 2)[2])["aps"]["aps-modules"]["aps-module"]
            self.assertEqual([one["name"] for one in modules], ["0/1-PSM-OM", "0/3-PSM-OM"])
            return keys(modules[0])

        ports = ["line-primary-in", "line-primary-out", "line-secondary-in", "line-secondary-out"]
        power = [f"optical-power/{leaf}" for leaf in ("instant", "avg", "min", "max")]
        config = {"name"} | {f"config/{name}" for name in CONFIG}
        config |= {f"ports/{port}/config/target-attenuation" for port in ports}
        operational = {"name", "state/active-path"}
        operational |= {f"ports/{port}/state/{leaf}" for port in ports for leaf in ["attenuation", *power]}
        operational |= {f"ports/common-output/state/{leaf}" for leaf in power}
        applied = {"name"} | {f"state/{name}" for name in CONFIG}
        applied |= {f"ports/{port}/state/target-attenuation" for port in ports}
        self.assertEqual(first_module(gnmi.GetRequest.CONFIG), config)
        self.assertEqual(first_module(gnmi.GetRequest.OPERATIONAL), operational)
        self.assertEqual(first_module(gnmi.GetRequest.STATE), operational | applied)
        self.assertEqual(first_module(gnmi.GetRequest.ALL), operational | applied | config)

    def test_kinds_of_data_in_proto(self):
        leaf = "/config/revertive"
        self.assertEqual(self.get(module(1, leaf), type=gnmi.GetRequest.CONFIG, encoding=gnmi.PROTO),
                         [[module(1, leaf) + " bool_val True"]])
        self.assertEqual(len(self.get(module(1, "/state"), type=gnmi.GetRequest.STATE, encoding=gnmi.PROTO)[0]), 10)
        self.assertEqual(self.get(module(1, "/state"), type=gnmi.GetRequest.OPERATIONAL, encoding=gnmi.PROTO),
                         [[module(1, "/state/active-path") + " string_val PRIMARY"]])
        self.assertEqual(self.refused(self.stub.Get, gnmi.GetRequest(path=[path(module(1, leaf))],
                                                                     type=gnmi.GetRequest.STATE)),
                         "NOT_FOUND: there is nothing of what is asked for at "
                         "/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/revertive")

    def test_wildcards(self):
        both = [[module(1, "/state/active-path") + ' json_val "PRIMARY"',
                 module(3, "/state/active-path") + ' json_val "SECONDARY"']]
        for pattern in ["/aps/aps-modules/aps-module[name=*]/state/active-path",
                        "/aps/aps-modules/aps-module/state/active-path", "/aps/*/*/state/active-path",
                        "/.../active-path", "/aps/.../state/active-path", "/*/*/*/*/active-path"]:
            self.assertEqual(self.get(pattern), both, pattern)
        self.assertEqual(self.get(module(3, "/ports/*/config/target-attenuation"), encoding=gnmi.PROTO),
                         [[f"{module(3)}/ports/line-{port}/config/target-attenuation double_val {value}"
                           for port, value in [("primary-in", 0.0), ("primary-out", 0.0), ("secondary-in", 0.8),
                                               ("secondary-out", 0.0)]]])
        self.assertEqual(self.get("/aps/aps-modules/aps-module[name=other]/.../active-path"), [[]])

    def test_prefix_target_and_origin(self):
        for origin in ["", "openconfig", MODEL]:
            request = gnmi.GetRequest(prefix=path(module(1), origin=origin, target="lab"),
                                      path=[path(f"/{MODEL}:config/revertive"), path("/config/wait-to-restore-time")])
            response = self.stub.Get(request)
            for notification in response.notification:
                self.assertGreater(notification.timestamp, 1_500_000_000_000_000_000)
                notification.timestamp = 0
            prefix = f"""prefix {{ origin: "{origin}" target: "lab" elem {{ name: "aps" }}
                elem {{ name: "aps-modules" }}
                elem {{ name: "aps-module" key {{ key: "name" value: "0/1-PSM-OM" }} }} }}"""
            self.assertEqual(response, message(
                f"""notification {{ {prefix} update {{
                    path {{ elem {{ name: "config" }} elem {{ name: "revertive" }} }} val {{ json_val: "true" }} }} }}
                notification {{ {prefix} update {{
                    path {{ elem {{ name: "config" }} elem {{ name: "wait-to-restore-time" }} }}
                    val {{ json_val: "10000" }} }} }}""", gnmi.GetResponse))

    def test_a_prefix_alone_and_one_with_wildcards(self):
        self.assertEqual([gnmi.GetResponse.FromString(self.stub.Get(gnmi.GetRequest(
            prefix=path(module(1, "/config/revertive")))).SerializeToString()).notification[0].update[0].val.json_val],
            [b"true"])
        response = self.stub.Get(gnmi.GetRequest(prefix=path("/aps/aps-modules/*[name=0/1-PSM-OM]"),
                                                 path=[path("/config/revertive")]))
        self.assertEqual(response.notification[0].update[0].path, path(module(1, "/config/revertive")))
        self.assertEqual(response.notification[0].prefix, gnmi.Path())

    def test_errors(self):
        one = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']"
        rows = [
            (gnmi.GetRequest(path=[path(module(2))]),
             "NOT_FOUND: there is nothing of what is asked for at /aps/aps-modules/aps-module[name='0/2-PSM-OM']"),
            (gnmi.GetRequest(path=[path("/aps"), path("/nothing")]), "NOT_FOUND: the model has no such node at /nothing"),
            (gnmi.GetRequest(path=[path("/aps", origin="cli")]),
             f"INVALID_ARGUMENT: the origin cli is not served, only openconfig and {MODEL}"),
            (gnmi.GetRequest(path=[path("/cli:aps")]), f"INVALID_ARGUMENT: the module cli is not served, only {MODEL}"),
            (gnmi.GetRequest(path=[gnmi.Path(element=["aps"])]),
             "INVALID_ARGUMENT: a path is made of elem; element has been given up by the protocol"),
            (gnmi.GetRequest(encoding=gnmi.ASCII), "UNIMPLEMENTED: the encodings are JSON, JSON_IETF and PROTO"),
            (gnmi.GetRequest(encoding=gnmi.BYTES), "UNIMPLEMENTED: the encodings are JSON, JSON_IETF and PROTO"),
            (gnmi.GetRequest(use_models=[gnmi.ModelData(name="x", version="1")]),
             f"INVALID_ARGUMENT: the model x 1 is not served, only {MODEL} 2018-11-21"),
            (gnmi.GetRequest(path=[path("/aps")] * 1025), "RESOURCE_EXHAUSTED: a Get has more than 1024 paths"),
            (gnmi.GetRequest(path=[path(module(1, "/config/hold-off-time"))]),
             f"NOT_FOUND: there is nothing of what is asked for at {one}/config/hold-off-time"),
        ]
        for request, expected in rows:
            self.assertEqual(self.refused(self.stub.Get, request), expected)
        self.assertEqual(len(self.stub.Get(gnmi.GetRequest(
            path=[path("/aps")], use_models=[gnmi.ModelData(name=MODEL)])).notification), 1)


main()
