"""Scenarios: what a peer sees of every common action, in virtual time, and which files are refused."""
import asyncio
import json
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "lab"))
from base.line import HangUp  # noqa: E402
from base.scenario import COMMON, Action, Refused, Scenario  # noqa: E402


class Peer:
    """The far end of a line: what came, in octets, and how many ms passed in between."""

    def __init__(self):
        self.seen, self.held = [], b""

    async def write(self, octets):
        if octets:
            self.seen.append(octets)

    async def pause(self, ms):
        self.seen.append(ms)

    async def hang_up(self):
        self.seen.append("dropped")
        raise HangUp


def seen_of(rules, events, reply=(b"one\n", b"two\n")):
    """What the peer sees of events that are all replied to alike."""
    scenario, peer = Scenario(rules), Peer()

    async def all_of_them():
        for event in events:
            await scenario.rule_for(event).play(list(reply), peer)

    try:
        asyncio.run(all_of_them())
    except HangUp:
        pass
    return peer.seen


class Actions(unittest.TestCase):
    def test_every_common_action(self):
        whole = b"one\ntwo\n"
        rows = {
            "delay": ({"ms": 700}, [700, whole, whole]),
            "split": ({"ms": 3}, [piece for octet in whole for piece in (bytes([octet]), 3)] + [whole]),
            "join": ({}, [whole + whole]),
            "silence": ({}, [whole]),
            "stall": ({}, [b"one\n", whole]),
            "cut": ({}, [b"one\n", "dropped"]),
            "hangup": ({}, ["dropped"]),
            "garbage": ({"hex": "00FF"}, [b"\0\xff" + whole, whole]),
            "unsolicited": ({"text": "é"}, [b"\xe9\r\none\n\xe9\r\ntwo\n", whole]),
            "instead": ({"text": "no"}, [b"no\r\n", whole]),
            "flood": ({"text": "RING", "ms": 3}, [b"RING\r\n", 1, b"RING\r\n", 1, b"RING\r\n", 1, whole]),
        }
        self.assertEqual(rows.keys(), COMMON.keys())
        for do, (fields, wanted) in rows.items():
            with self.subTest(do):
                self.assertEqual(seen_of([{"match": "a", "nth": [1], "do": do} | fields], ["a", "a"]), wanted)

    def test_an_event_without_reply_leaves_what_is_held(self):
        async def held():
            scenario, peer = Scenario([{"match": "a", "do": "join"}]), Peer()
            for event, reply in (("a", [b"1"]), ("b", []), ("b", [b"2"])):
                await scenario.rule_for(event).play(reply, peer)
            return peer.seen
        self.assertEqual(asyncio.run(held()), [b"12"])

    def test_the_first_fitting_rule_counts(self):
        rules = [{"match": "AT+CMGS", "nth": [2, 3], "do": "instead", "text": "first"},
                 {"match": "at+c", "nth": [1, 3, 4], "do": "instead", "text": "second"},
                 {"nth": [6], "do": "instead", "text": "any"}]
        events = ["AT+CMGS=1", "at+cmgs=2", "AT+CMGS=3", "AT+CPMS", "AT", "OTHER"]
        self.assertEqual(seen_of(rules, events, [b"."]),
                         [b"second\r\n", b"first\r\n", b"first\r\n", b"second\r\n", b".", b"any\r\n"])


class Files(unittest.TestCase):
    def test_bad_files_are_refused_in_one_line(self):
        rows = [
            ("[{", "Expecting property name"),
            ("{}", "a scenario is a list of rules"),
            ('["x"]', "rule 1: a rule is an object"),
            ('[{"do": "silence"}, {"do": "dealy"}]', 'rule 2: unknown action "dealy", there are cut, delay,'),
            ('[{"match": "x"}]', "rule 1: unknown action null"),
            ('[{"do": ["x"]}]', "rule 1: unknown action"),
            ('[{"do": "delay", "sm": 5}]', 'rule 1: delay takes no "sm"'),
            ('[{"do": "delay", "ms": "5"}]', 'rule 1: "ms" cannot be "5"'),
            ('[{"do": "delay", "ms": -5}]', 'rule 1: "ms" is negative'),
            ('[{"do": "silence", "nth": 2}]', 'rule 1: "nth" cannot be 2'),
            ('[{"do": "silence", "nth": [0]}]', 'rule 1: "nth" is a list of numbers from 1'),
            ('[{"do": "flood"}]', 'rule 1: flood needs either "text" or "hex"'),
            ('[{"do": "garbage", "hex": "0"}]', "rule 1: non-hexadecimal"),
            ('[{"do": "garbage", "text": "中"}]', "rule 1: 'latin-1' codec"),
            ('[{"do": "own", "level": "high"}]', 'rule 1: "level" cannot be "high"'),
        ]
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "rules.json")
            for text, wanted in rows:
                with self.subTest(text), self.assertRaises(Refused) as caught:
                    path.write_text(text, encoding="utf-8")
                    Scenario.load(path, {"own": Action("", {"level": 1})})
                self.assertTrue(str(caught.exception).startswith(f"scenario {path}: {wanted}"), str(caught.exception))
            with self.assertRaisesRegex(Refused, "No such file"):
                Scenario.load(pathlib.Path(folder, "none.json"))

    def test_defaults_and_given_fields(self):
        actions = {"own": Action("", {"level": 1, "name": ""})}
        rule = Scenario(json.loads('[{"do": "own", "name": "x"}]'), actions).rule_for("anything")
        self.assertEqual((rule.do, rule.get("level"), rule.get("name"), rule.get("none", 7)), ("own", 1, "x", 7))


if __name__ == "__main__":
    unittest.main()
