"""The MM7 end of the lab's MMS centre, judged by Python's own client and XML parser."""
import asyncio
import http.client
import unittest
import xml.etree.ElementTree as ET

from lab import serving
from mmsc import Mmsc
from wire import mm7

SCHEMA = "http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/REL-6-MM7-1-4"
TYPE = 'multipart/related; boundary="o"; type="text/xml"; start="<e>"'
REQUEST = f"""<x:Envelope xmlns:x="http://schemas.xmlsoap.org/soap/envelope/"><x:Header>
<m:TransactionID xmlns:m="{SCHEMA}">T&lt;1</m:TransactionID></x:Header><x:Body><SubmitReq xmlns="{SCHEMA}">
<MM7Version>6.8.0</MM7Version><SenderIdentification><VASPID>vp</VASPID><SenderAddress><ShortCode>1234</ShortCode>
</SenderAddress></SenderIdentification><Recipients><To><Number>+316</Number><RFC2822Address>a@b.org</RFC2822Address></To>
<Bcc><Number>+317</Number></Bcc></Recipients><ServiceCode>gold</ServiceCode><ExpiryDate>2023-11-15T22:13:20Z</ExpiryDate>
<MessageClass>Auto</MessageClass><DeliveryReport>true</DeliveryReport><ReadReply>false</ReadReply><Priority>High</Priority>
<Subject>Ü</Subject><Content href="cid:c"/></SubmitReq></x:Body></x:Envelope>"""
PARTS = (b'--o\r\nContent-Type: multipart/related; boundary="i"; start="<s>"\r\nContent-ID: <c>\r\n\r\n'
         b"--i\r\nContent-Type: application/smil\r\nContent-ID: <s>\r\nContent-Location: s.smil\r\n\r\n<smil/>\r\n"
         b'--i\r\nContent-Type: text/plain; charset="utf-8"\r\nContent-ID: <t>\r\nContent-Location: t.txt\r\n'
         b"Content-Transfer-Encoding: binary\r\n\r\nGr\xc3\xbc\xc3\x9fe\r\n--i\r\nContent-Type: image/jpeg\r\nContent-ID: <p>\r\n"
         b"Content-Transfer-Encoding: binary\r\n\r\n\xff\0\r\n\r\n--i--\r\n--o--\r\n")


def body(request=REQUEST, parts=PARTS):
    return b"--o\r\nContent-Type: text/xml; charset=utf-8\r\nContent-ID: <e>\r\n\r\n" + request.encode() + b"\r\n" + parts


def said(reply):
    """The names and texts of the elements below the body."""
    root = ET.fromstring(reply)
    return {node.tag.rpartition("}")[2]: node.text for node in root[1].iter() if node.text}


class Submissions(unittest.IsolatedAsyncioTestCase):
    async def exchange(self, octets, rules=None, media=TYPE):
        def ask(port):
            connection = http.client.HTTPConnection("127.0.0.1", port, timeout=20)
            connection.request("POST", "/mm7", octets, {"Content-Type": media, "SOAPAction": '""'})
            reply = connection.getresponse()
            found = reply.status, reply.headers.get("Content-Type", ""), reply.read()
            connection.close()
            return found
        async with serving(Mmsc, rules) as (centre, port):
            self.records = []
            centre.record = self.records.append
            return await asyncio.to_thread(ask, port), centre.said

    async def test_takes_a_submission(self):
        (status, media, reply), words = await self.exchange(body())
        self.assertEqual((status, media), (200, "text/xml; charset=utf-8"))
        self.assertEqual(ET.fromstring(reply)[0][0].text, "T<1")
        self.assertEqual(said(reply), {"MM7Version": "6.8.0", "StatusCode": "1000", "StatusText": "Success",
                                       "MessageID": "1@mmsc.lab"})
        self.assertEqual(words, [
            'message 1 over MM7: from 1234, to +316, a@b.org, bcc +317, subject "Ü", class auto, priority high, delivery '
            "report wanted, valid until 1700086400 s, 3 parts, VASP vp, service gold",
            "  application/smil, 7 octets, s.smil", '  text/plain, 7 octets, t.txt: "Grüße"', "  image/jpeg, 4 octets"])
        self.assertEqual([(part["id"], part["size"]) for part in self.records[0]["parts"]], [("s", 7), ("t", 7), ("p", 4)])

    async def test_answers_by_scenario(self):
        for rule, status, wanted, taken in [
            ({"do": "submitted", "code": "1100", "text": "Not to <all>"}, 200,
             {"StatusCode": "1100", "StatusText": "Not to <all>", "MessageID": "1@mmsc.lab"}, 1),
            ({"do": "submitted", "code": "4001", "text": "Who?"}, 200, {"StatusCode": "4001", "StatusText": "Who?"}, 0),
            ({"do": "submitted", "code": "1000", "form": "other"}, 200,
             {"Request-Status": "1000", "Message-ID": "1@mmsc.lab"}, 1),
            ({"do": "fault", "text": "No"}, 500, {"faultcode": "soap:Client", "faultstring": "No"}, 0),
            ({"do": "fault", "code": "4004", "status": 200}, 200,
             {"faultcode": "soap:Client", "faultstring": "Refused", "StatusCode": "4004", "StatusText": "Refused"}, 0),
            ({"do": "split", "ms": 0}, 200, {"StatusCode": "1000", "StatusText": "Success", "MessageID": "1@mmsc.lab"}, 1),
        ]:
            with self.subTest(rule):
                (got, _, reply), words = await self.exchange(body(), [rule])
                self.assertEqual(got, status)
                found = said(reply)
                found.pop("MM7Version", None)
                self.assertEqual(found, wanted)
                self.assertEqual(len([line for line in words if line.startswith("message")]), taken)
        (_, media, reply), _ = await self.exchange(body(), [{"do": "submitted", "code": "1000", "form": "multipart"}])
        self.assertTrue(media.startswith("multipart/related") and reply.startswith(b"--reply\r\n"))
        (_, media, _), _ = await self.exchange(body(), [{"do": "portal"}])
        self.assertEqual(media, "text/html")

    async def test_refuses_what_is_no_submission(self):
        swapped = REQUEST.replace("<MM7Version>6.8.0</MM7Version>", "").replace("</SubmitReq>", "<MM7Version>6.8.0</MM7Version></SubmitReq>")
        for octets, media, reason in [
            (b"<html>", "text/html", "text/html is no multipart/related"), (b"", TYPE, "no whole multipart"),
            (body("<html>"), TYPE, "no XML"), (body("<a/>"), TYPE, "a is no envelope"),
            (body(REQUEST.replace("T&lt;1", "")), TYPE, "no TransactionID"),
            (body(REQUEST.replace("SubmitReq", "CancelReq")), TYPE, "no SubmitReq but CancelReq"),
            (body(REQUEST.replace("23.140", "23.040")), TYPE, "http://www.3gpp.org/ftp/Specs/archive/23_series/23.040"),
            (body(swapped), TYPE, "elements out of order"), (body(REQUEST.replace("cid:c", "cid:d")), TYPE, "no content d"),
            (body(parts=PARTS.replace(b"<s>\r", b"<x>\r")), TYPE, "no presentation <s>"),
            (body(REQUEST.replace("true<", "yes<")), TYPE, "'yes' is no flag"), (body()[:-40], TYPE, "no whole multipart"),
        ]:
            with self.subTest(reason):
                (status, _, reply), words = await self.exchange(octets, media=media)
                self.assertEqual((status, said(reply)["StatusCode"], len(words)), (500, "2007", 1))
                self.assertIn(f"octets: {reason}", words[0])

    def test_every_cut_is_seen(self):
        whole = body()
        end = whole.rindex(b"--o--")
        for size in range(0, end + 4, 11):
            self.assertRaises(ValueError, mm7.read, TYPE, whole[:size])


if __name__ == "__main__":
    unittest.main()
