"""Every body of `mm7_submissions` as a server gets it: the parts by Python's email package, the envelope by xml.etree."""
import datetime
import email
import email.policy
import json
import os
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ET

PROGRAM = os.path.abspath(sys.argv.pop(1))
SOAP = "{http://schemas.xmlsoap.org/soap/envelope/}"
SCHEMA = "{http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/%s}"
SIZES = (0, 1, 2, 3, 56, 57, 58, 256, 300_000)


def counting(size):
    return bytes((i + i // 256) % 256 for i in range(size))


def elements(node, schema):
    """(depth, name, text) of everything below, in order of the document."""
    found = []

    def walk(parent, depth):
        for child in parent:
            found.append((depth, child.tag.removeprefix(schema), (child.text or "").strip()))
            walk(child, depth + 1)
    walk(node, 0)
    return found


class Bodies(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        lines = subprocess.run([PROGRAM], capture_output=True, check=True, text=True).stdout.splitlines()
        cls.bodies = {entry["kind"]: entry for entry in map(json.loads, lines)}

    def read(self, kind):
        """The transaction id, the envelope and the parts of the content."""
        entry = self.bodies[kind]
        body = bytes.fromhex(entry["headers"]) + b"\r\n\r\n" + bytes.fromhex(entry["body"])
        outer = email.message_from_bytes(body, policy=email.policy.default)
        self.assertEqual(outer.get_content_type(), "multipart/related")
        self.assertEqual((outer["SOAPAction"], outer.get_param("start"), outer.get_param("type")),
                         ('""', "<mm7_msg>", "text/xml"))
        envelope, content = outer.iter_parts()
        self.assertEqual((envelope["Content-ID"], envelope.get_content_charset()), ("<mm7_msg>", "utf-8"))
        self.assertEqual((content["Content-ID"], content.get_param("start"), content.get_param("type")),
                         ("<mms_cid>", f"<{entry['id']}.smil>", "application/smil"))
        self.assertEqual([part.defects for part in outer.walk()], [[]] * len(list(outer.walk())))
        root = ET.fromstring(envelope.get_payload(decode=True))
        self.assertEqual([child.tag for child in root], [SOAP + "Header", SOAP + "Body"])
        return entry["id"], root, list(content.iter_parts())

    def submission(self, kind, name):
        schema = SCHEMA % name
        number, root, _ = self.read(kind)
        transaction, = root[0]
        self.assertEqual((transaction.tag, transaction.text), (schema + "TransactionID", number))
        self.assertEqual(transaction.attrib, {SOAP + "mustUnderstand": "1"})
        request, = root[1]
        self.assertEqual(request.tag, schema + "SubmitReq")
        found = elements(request, schema)
        self.assertEqual(request.find(schema + "Content").attrib, {"href": "cid:mms_cid"})
        return found

    def test_the_least_envelope(self):
        self.assertEqual(self.submission("least", "REL-5-MM7-1-2"), [
            (0, "MM7Version", "5.2.0"), (0, "Recipients", ""), (1, "To", ""), (2, "Number", "+31612345678"),
            (0, "MessageClass", "Personal"), (0, "DeliveryReport", "false"), (0, "ReadReply", "false"),
            (0, "Priority", "Normal"), (0, "Subject", ""), (0, "Content", "")])

    def test_the_fullest_envelope(self):
        found = self.submission("most", "REL-6-MM7-1-4")
        expiry = next(text for _, name, text in found if name == "ExpiryDate")
        left = datetime.datetime.fromisoformat(expiry.replace("Z", "+00:00")) - datetime.datetime.now(datetime.timezone.utc)
        self.assertLess(abs(left - datetime.timedelta(days=1)), datetime.timedelta(minutes=5))
        self.assertEqual(found, [
            (0, "MM7Version", "6.8.0"), (0, "SenderIdentification", ""), (1, "VASPID", "vasp <&>"), (1, "VASID", "vas"),
            (1, "SenderAddress", ""), (2, "Number", "+31600000001"),
            (0, "Recipients", ""), (1, "To", ""), (2, "Number", "+31612345678"), (2, "RFC2822Address", "eve@example.org"),
            (1, "Cc", ""), (2, "RFC2822Address", "ann@example.org"), (1, "Bcc", ""), (2, "RFC2822Address", "bob@example.org"),
            (0, "ServiceCode", "gold"), (0, "ExpiryDate", expiry), (0, "MessageClass", "Auto"),
            (0, "DeliveryReport", "true"), (0, "ReadReply", "true"), (0, "Priority", "High"),
            (0, "Subject", 'Über <€> & "more"'), (0, "Content", "")])

    def test_every_part_arrives_octet_for_octet(self):
        number, _, (smil, *parts) = self.read("least")
        self.assertEqual(smil["Content-ID"], f"<{number}.smil>")
        shown = [node.get("src") for node in ET.fromstring(smil.get_payload(decode=True)).iter() if node.get("src")]
        self.assertEqual([part["Content-Location"] for part in parts], shown)
        self.assertEqual([part["Content-ID"] for part in parts], [f"<{name}>" for name in shown])
        self.assertEqual({part["Content-Transfer-Encoding"] for part in parts}, {"binary"})
        text, other = ("text/plain", "utf-8"), ("application/octet-stream", None)
        self.assertEqual([(part.get_content_type(), part.get_content_charset()) for part in parts],
                         [text] + [("image/jpeg", None)] * len(SIZES) + [("image/gif", None), other, text])
        self.assertEqual([part.get_payload(decode=True) for part in parts],
                         ["Grüße\0".encode()] + [counting(size) for size in SIZES]
                         + [b"\r\n--\r\n\r\n.\r\n--", b"x", "<second> & €\0".encode()])


if __name__ == "__main__":
    unittest.main()
