"""Scenarios: a JSON list of rules by which a counterpart misbehaves.

A counterpart asks for the rule of each event by the event's name (a command, the name of a PDU ...), makes its reply as
a list of pieces (lines, PDUs) and has the rule play it on the line: `write(octets)`, `pause(ms)`, `hang_up()`, `held`.
"""
import dataclasses
import json
from collections.abc import Callable

OCTETS = {"text": "", "hex": ""}  # a line, CRLF is added; or octets as they are


class Refused(Exception):
    """What the program was asked for cannot be done; says why in one line."""


async def _usual(rule, reply, line):
    await line.write(b"".join(reply))


@dataclasses.dataclass(frozen=True)
class Action:
    """What a rule can do. An action of a counterpart's own changes the reply; playing it is then as usual."""
    words: str
    fields: dict = dataclasses.field(default_factory=dict)  # name -> default, whose type counts
    play: Callable = _usual


COMMON = {}


def _common(words, **fields):
    def register(play):
        COMMON[play.__name__] = Action(words, fields, play)
        return play
    return register


@_common("the reply `ms` later", ms=20)
async def delay(rule, reply, line):
    await line.pause(rule.get("ms"))
    await _usual(rule, reply, line)


@_common("the reply octet by octet, `ms` apart", ms=5)
async def split(rule, reply, line):
    for octet in b"".join(reply):
        await line.write(bytes([octet]))
        await line.pause(rule.get("ms"))


@_common("the reply together with the next one")
async def join(rule, reply, line):
    line.held = b"".join(reply)


@_common("no reply")
async def silence(rule, reply, line):
    pass


@_common("half the reply, then nothing")
async def stall(rule, reply, line):
    whole = b"".join(reply)
    await line.write(whole[:len(whole) // 2])


@_common("half the reply, then the line is dropped")
async def cut(rule, reply, line):
    await stall(rule, reply, line)
    await line.hang_up()


@_common("the line is dropped instead of a reply")
async def hangup(rule, reply, line):
    await line.hang_up()


@_common("`text` or `hex` before the reply", **OCTETS)
async def garbage(rule, reply, line):
    await line.write(b"".join([rule.octets, *reply]))


@_common("`text` or `hex` before each line or PDU of the reply", **OCTETS)
async def unsolicited(rule, reply, line):
    await line.write(b"".join(rule.octets + piece for piece in reply))


@_common("`text` or `hex` instead of the reply", **OCTETS)
async def instead(rule, reply, line):
    await line.write(rule.octets)


@_common("`text` or `hex` every millisecond, `ms` times, instead of the reply", ms=1000, **OCTETS)
async def flood(rule, reply, line):
    for _ in range(rule.get("ms")):
        await line.write(rule.octets)
        await line.pause(1)


class Rule:
    """One rule. Without arguments: as usual."""

    def __init__(self, given=None, action=Action("as usual")):
        self.given = given or {}
        self.action = action
        self.do = self.given.get("do", "")
        self.seen = 0

    def get(self, name, default=None):
        return self.given.get(name, self.action.fields.get(name, default))

    @property
    def octets(self):
        return bytes.fromhex(self.get("hex")) or self.get("text").encode("latin-1") + b"\r\n"

    def fits(self, event):
        if not event.upper().startswith(self.given.get("match", "").upper()):
            return False
        self.seen += 1
        return self.seen in self.given.get("nth", [self.seen])

    async def play(self, reply, line):
        if line.held and reply:
            reply, line.held = [line.held, *reply], b""
        await self.action.play(self, reply, line)


class Scenario:
    def __init__(self, rules=(), own_actions=None):
        self.actions = COMMON | (own_actions or {})
        if not isinstance(rules, (list, tuple)):
            raise Refused("a scenario is a list of rules")
        self.rules = [self._checked(number, rule) for number, rule in enumerate(rules, 1)]

    @classmethod
    def load(cls, path, own_actions=None):
        try:
            with open(path, encoding="utf-8") as file:
                return cls(json.load(file), own_actions)
        except (OSError, ValueError, Refused) as fault:
            raise Refused(f"scenario {path}: {getattr(fault, 'strerror', None) or fault}") from fault

    def rule_for(self, event):
        """The first rule that fits. Every rule counts what it matches, also when an earlier one is taken."""
        fitting = [rule for rule in self.rules if rule.fits(event)]
        return fitting[0] if fitting else Rule()

    def _checked(self, number, rule):
        fault = self._fault(rule)
        if fault:
            raise Refused(f"rule {number}: {fault}")
        return Rule(rule, self.actions[rule["do"]])

    def _fault(self, rule):
        if not isinstance(rule, dict):
            return "a rule is an object"
        do = rule.get("do")
        if not isinstance(do, str) or do not in self.actions:
            return f"unknown action {json.dumps(do)}, there are {', '.join(sorted(self.actions))}"
        fields = self.actions[do].fields
        taken = {"match": "", "nth": [], "do": ""} | fields
        for name, value in rule.items():
            if name not in taken:
                return f"{do} takes no {json.dumps(name)}"
            if type(value) is not type(taken[name]):
                return f"{json.dumps(name)} cannot be {json.dumps(value)}"
        if not all(type(count) is int and count > 0 for count in rule.get("nth", [])):
            return '"nth" is a list of numbers from 1'
        if rule.get("ms", 0) < 0:
            return '"ms" is negative'
        if "hex" in fields:
            return self._fault_of_octets(rule)
        return None

    @staticmethod
    def _fault_of_octets(rule):
        if ("text" in rule) == ("hex" in rule):
            return f'{rule["do"]} needs either "text" or "hex"'
        try:
            rule.get("text", "").encode("latin-1")
            bytes.fromhex(rule.get("hex", ""))
        except ValueError as fault:
            return str(fault)
        return None


def describe(actions):
    """The actions in words, for help texts."""
    lines = []
    for name, action in actions.items():
        defaults = ", ".join(f"{field} {value}" for field, value in action.fields.items() if value != "")
        lines.append(f"  {name:<12} {action.words}" + (f" ({defaults} when not given)" if defaults else ""))
    return "\n".join(lines)
