"""Set: operations, values of every form, whole or not at all, errors."""
from client import OwnServerCase, gnmi, grpc, main, message, module, path

ONE = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']"


def update(text, **value):
    return gnmi.Update(path=path(text), val=gnmi.TypedValue(**value))


class Set(OwnServerCase):

    def set(self, **fields):
        return self.stub.Set(gnmi.SetRequest(**fields), timeout=60)

    def config(self, *paths):
        return [line for lines in self.get(*paths, encoding=gnmi.PROTO, type=gnmi.GetRequest.CONFIG) for line in lines]

    def test_answer(self):
        response = self.set(prefix=path(module(1)), delete=[path("/config/force-to-port")],
                            replace=[update("/config/revertive", bool_val=False)],
                            update=[update("/config/wait-to-restore-time", uint_val=7)])
        self.assertGreater(response.timestamp, 1_500_000_000_000_000_000)
        response.timestamp = 0
        self.assertEqual(response, message(
            """prefix { elem { name: "aps" } elem { name: "aps-modules" }
                 elem { name: "aps-module" key { key: "name" value: "0/1-PSM-OM" } } }
               response { path { elem { name: "config" } elem { name: "force-to-port" } } op: DELETE }
               response { path { elem { name: "config" } elem { name: "revertive" } } op: REPLACE }
               response { path { elem { name: "config" } elem { name: "wait-to-restore-time" } } op: UPDATE }""",
            gnmi.SetResponse))
        self.assertEqual(self.config(module(1, "/config/revertive"), module(1, "/config/wait-to-restore-time")),
                         [module(1, "/config/revertive") + " bool_val False",
                          module(1, "/config/wait-to-restore-time") + " uint_val 7"])

    def test_values_of_every_form(self):
        threshold = module(1, "/config/primary-switch-threshold")
        for number, value in enumerate([
                {"double_val": -20.0}, {"float_val": -21.5}, {"int_val": -22},
                {"decimal_val": gnmi.Decimal64(digits=-235, precision=1)}, {"json_val": b"-24"},
                {"json_ietf_val": b'"-25.5"'}]):
            self.set(update=[update(threshold, **value)])
            expected = ["-20.0", "-21.5", "-22.0", "-23.5", "-24.0", "-25.5"][number]
            self.assertEqual(self.config(threshold), [f"{threshold} double_val {expected}"])
        port = module(1, "/config/force-to-port")
        self.set(update=[update(port, string_val="SECONDARY")])
        self.assertEqual(self.config(port), [port + " string_val SECONDARY"])

    def test_replace_takes_away_what_is_not_said(self):
        self.set(replace=[update(module(1, "/config"), json_ietf_val=b'{"revertive": false}')])
        self.assertEqual(self.config(module(1, "/config")), [module(1, "/config/name") + " string_val 0/1-PSM-OM",
                                                             module(1, "/config/revertive") + " bool_val False"])

    def test_update_leaves_what_is_not_said(self):
        before = self.config("/")
        self.set(update=[update(module(1), json_val=b'{"name": "0/1-PSM-OM", "config": {"revertive": false}}')])
        line = module(1, "/config/revertive") + " bool_val "
        self.assertEqual(self.config("/"), [line + "False" if one == line + "True" else one for one in before])

    def test_replace_of_an_entry(self):
        others = self.config(module(3))
        self.set(replace=[update(module(1), json_val=b'{"config": {"wait-to-restore-time": 5}}')])
        self.assertEqual(self.config("/"), [
            module(1, "/name") + " string_val 0/1-PSM-OM", module(1, "/config/name") + " string_val 0/1-PSM-OM",
            module(1, "/config/wait-to-restore-time") + " uint_val 5", *others])

    def expect_only_one_timer(self):
        self.assertEqual(self.config("/"), [
            module(1, "/name") + " string_val 0/1-PSM-OM", module(1, "/config/name") + " string_val 0/1-PSM-OM",
            module(1, "/config/wait-to-restore-time") + " uint_val 5", module(3, "/name") + " string_val 0/3-PSM-OM",
            module(3, "/config/name") + " string_val 0/3-PSM-OM"])

    def test_replace_of_a_list(self):
        self.set(replace=[update("/aps/aps-modules/aps-module",
                                 json_val=b'[{"name": "0/1-PSM-OM", "config": {"wait-to-restore-time": 5}}]')])
        self.expect_only_one_timer()

    def test_replace_of_the_list_s_container(self):
        self.set(replace=[update("/aps/aps-modules", json_val=b'{"aps-module": [{"name": "0/1-PSM-OM", '
                                                              b'"config": {"wait-to-restore-time": 5}}]}')])
        self.expect_only_one_timer()

    def test_replace_of_the_root(self):
        self.set(replace=[update("/", json_ietf_val=b'{"openconfig-transport-line-protection:aps": {"aps-modules": '
                                                    b'{"aps-module": [{"name": "0/1-PSM-OM", "config": '
                                                    b'{"wait-to-restore-time": 5}}]}}}')])
        self.expect_only_one_timer()

    def test_what_was_read_can_be_written(self):
        [[whole]] = self.get("/", type=gnmi.GetRequest.CONFIG, encoding=gnmi.JSON_IETF)
        before = self.config("/")
        self.set(delete=[path("/")])
        self.assertEqual(len(self.config("/")), 4)
        self.set(replace=[update("/", json_ietf_val=whole.split(" ", 2)[2].encode())])
        self.assertEqual(self.config("/"), before)

    def test_delete(self):
        leaf = module(1, "/config/revertive")
        self.set(delete=[path(leaf), path(leaf), path(module(2)), path(module(2, "/config/revertive"))])
        self.assertNotIn(leaf + " bool_val True", self.config("/"))
        self.set(delete=[path(leaf)])  # what is not there is deleted already

    def test_delete_with_wildcards(self):
        before = self.config("/")
        self.set(delete=[path("/.../target-attenuation"), path("/aps/aps-modules/aps-module/config/revertive")])
        self.assertEqual(self.config("/"), [line for line in before
                                            if "target-attenuation" not in line and "revertive" not in line])

    def test_deletes_come_first_then_replaces_then_updates(self):
        self.set(update=[update(module(1, "/config/wait-to-restore-time"), uint_val=9)],
                 replace=[update(module(1, "/config"), json_val=b'{"revertive": false, "wait-to-restore-time": 8}')],
                 delete=[path(module(1))])
        self.assertEqual(self.config(module(1)), [
            module(1, "/name") + " string_val 0/1-PSM-OM", module(1, "/config/name") + " string_val 0/1-PSM-OM",
            module(1, "/config/revertive") + " bool_val False",
            module(1, "/config/wait-to-restore-time") + " uint_val 9"])

    def test_refused_edits_change_nothing(self):
        good = update(module(1, "/config/revertive"), bool_val=False)
        rows = [
            (gnmi.SetRequest(update=[good, update(module(2, "/config/revertive"), bool_val=True)]),
             "NOT_FOUND: there is no module '0/2-PSM-OM' at /aps/aps-modules/aps-module[name='0/2-PSM-OM']; fitted are "
             "0/1-PSM-OM, 0/3-PSM-OM"),
            (gnmi.SetRequest(update=[good, update(module(1, "/config/nothing"), bool_val=True)]),
             f"NOT_FOUND: the model has no such node at {ONE}/config/nothing"),
            (gnmi.SetRequest(update=[good, update(module(1, "/config"), json_val=b'{"nothing": 1}')]),
             f"INVALID_ARGUMENT: the model has no such node at {ONE}/config/nothing"),
            (gnmi.SetRequest(update=[good, update(module(1, "/config/primary-switch-threshold"), double_val=-20.555)]),
             f"INVALID_ARGUMENT: \"-20.555\" is not allowed at {ONE}/config/primary-switch-threshold; a value of type "
             "decimal64 in dBm with at most 2 fraction digits is expected"),
            (gnmi.SetRequest(update=[good, update(module(1, "/config/hold-off-time"), uint_val=1)]),
             f"UNIMPLEMENTED: hold-off-time is not served by this device at {ONE}/config/hold-off-time; leave it out"),
            (gnmi.SetRequest(update=[good, update(module(1, "/state/revertive"), bool_val=True)]),
             f"INVALID_ARGUMENT: operational state cannot be written at {ONE}/state/revertive"),
            (gnmi.SetRequest(update=[good, update(module(1, "/config/revertive"), string_val="true")]),
             f"INVALID_ARGUMENT: a leaf of type boolean cannot be given as string_val at {ONE}/config/revertive"),
            (gnmi.SetRequest(update=[good, gnmi.Update(path=path(module(1, "/config/revertive")))]),
             f"INVALID_ARGUMENT: there is no value at {ONE}/config/revertive"),
            (gnmi.SetRequest(update=[good, update(module(1), ascii_val="x")]),
             "UNIMPLEMENTED: values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at " + ONE),
            (gnmi.SetRequest(update=[good], union_replace=[good]),
             "UNIMPLEMENTED: union_replace is not served; use replace"),
            (gnmi.SetRequest(update=[good, update("/aps/aps-modules/aps-module[name=*]/config", json_val=b"{}")]),
             "INVALID_ARGUMENT: what is replaced or updated is one node: without wildcards, each list with its keys at "
             "/aps/aps-modules/aps-module[name='*']/config"),
        ]
        before = self.config("/")
        for request, expected in rows:
            self.assertEqual(self.refused(self.stub.Set, request), expected)
        self.assertEqual(self.config("/"), before)

    def test_state_in_a_value_is_refused(self):
        before = self.config("/")
        refusal = self.refused(self.stub.Set, gnmi.SetRequest(
            update=[update(module(1), json_val=b'{"config": {"revertive": false}, "state": {"revertive": false}}')]))
        self.assertEqual(refusal, f"INVALID_ARGUMENT: operational state cannot be written at {ONE}/state")
        self.assertEqual(self.config("/"), before)


main()
