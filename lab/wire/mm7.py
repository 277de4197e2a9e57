"""Submissions over MM7 (3GPP TS 23.140, chapter 10): SOAP 1.1 with attachments, read and answered the plain way."""
import dataclasses
import datetime
import email
import email.policy
import xml.etree.ElementTree as ET
from xml.sax.saxutils import escape

from wire import mms, wsp

SOAP = "http://schemas.xmlsoap.org/soap/envelope/"
SCHEMAS = "http://www.3gpp.org/ftp/Specs/archive/23_series/23.140/schema/REL-"
CHARSETS = {"utf-8": wsp.UTF8, "us-ascii": 3, "iso-8859-1": 4}
ORDER = ["MM7Version", "SenderIdentification", "Recipients", "ServiceCode", "ExpiryDate", "MessageClass",
         "DeliveryReport", "ReadReply", "Priority", "Subject", "Content"]


@dataclasses.dataclass
class Submission:
    fields: dict
    parts: list


def _local(node):
    return node.tag.rpartition("}")[2]


def _text(node, name):
    found = next((child for child in node if _local(child) == name), None)
    return None if found is None else found.text or ""


def _part(part):
    return mms.Part(part.get_content_type(), part.get_payload(decode=True), part.get("Content-Location", ""),
                    CHARSETS.get(part.get_content_charset()), part.get("Content-ID", "").strip("<>"))


def _addresses(request):
    lists = {name: [] for name in mms.LISTS}
    for node in request:
        if _local(node) == "Recipients":
            for kind in node:
                if (name := _local(kind).lower()) not in lists:
                    raise ValueError(f"{_local(kind)} is no kind of recipient")
                lists[name] += [address.text or "" for address in kind]
    return lists


def _sender(request):
    identification = next((node for node in request if _local(node) == "SenderIdentification"), ())
    address = next((node for node in identification if _local(node) == "SenderAddress"), ())
    known = next(iter(address), None)
    return {"vasp": _text(identification, "VASPID"), "vas": _text(identification, "VASID"),
            "from": None if known is None else known.text,
            "sender_kind": None if known is None else _local(known)}


def _flag(text):
    if text not in ("true", "false"):
        raise ValueError(f"{text!r} is no flag")
    return text == "true"


def _request(envelope):
    """Transaction id, schema and the request in an envelope."""
    try:
        root = ET.fromstring(envelope)
    except ET.ParseError as fault:
        raise ValueError(f"no XML: {fault}") from fault
    if root.tag != f"{{{SOAP}}}Envelope" or [_local(child) for child in root] != ["Header", "Body"]:
        raise ValueError(f"{root.tag} is no envelope with header and body")
    header, body = root
    transaction, request = _text(header, "TransactionID"), next(iter(body), None)
    if not transaction:
        raise ValueError("no TransactionID")
    if request is None or _local(request) != "SubmitReq":
        raise ValueError(f"no SubmitReq but {None if request is None else _local(request)}")
    schema = request.tag[1:].partition("}")[0]
    if not schema.startswith(SCHEMAS):
        raise ValueError(f"{schema} is no schema of MM7")
    return transaction, schema, request


def _fields(envelope):
    transaction, schema, request = _request(envelope)
    names = [_local(node) for node in request]
    if names != sorted(set(names), key=lambda name: ORDER.index(name) if name in ORDER else -1) or names[0] != ORDER[0]:
        raise ValueError(f"elements out of order: {', '.join(names)}")
    expiry = _text(request, "ExpiryDate")
    fields = {"transaction": transaction, "schema": schema, "version": _text(request, "MM7Version"),
              "subject": _text(request, "Subject"), "service": _text(request, "ServiceCode"),
              "class": (_text(request, "MessageClass") or "personal").lower(),
              "priority": (_text(request, "Priority") or "normal").lower(),
              "delivery_report": _flag(_text(request, "DeliveryReport")), "read_report": _flag(_text(request, "ReadReply")),
              } | _sender(request) | _addresses(request)
    if expiry:
        when = datetime.datetime.fromisoformat(expiry.replace("Z", "+00:00"))
        fields["expiry"] = {"relative": False, "seconds": int(when.timestamp())}
    if not any(fields[name] for name in mms.LISTS):
        raise ValueError("no recipient")
    content = next((node for node in request if _local(node) == "Content"), None)
    fields["content"] = "" if content is None else content.get("href", "").removeprefix("cid:")
    return fields


def read(content_type, body):
    """The submission in a request. ValueError says what is wrong with it."""
    message = email.message_from_bytes(b"Content-Type: " + content_type.encode() + b"\r\n\r\n" + body,
                                       policy=email.policy.default)
    if message.get_content_type() != "multipart/related":
        raise ValueError(f"{message.get_content_type()} is no multipart/related")
    defects = [type(defect).__name__ for part in message.walk() for defect in part.defects]
    parts = {part.get("Content-ID", ""): part for part in message.iter_parts()}
    envelope = parts.get(message.get_param("start"))
    if defects or envelope is None:
        raise ValueError(f"no whole multipart with an envelope: {', '.join(defects) or ', '.join(parts)}")
    fields = _fields(envelope.get_payload(decode=True))
    content = parts.get(f"<{fields['content']}>")
    if content is None:
        raise ValueError(f"no content {fields['content']}")
    start, inner = content.get_param("start"), list(content.iter_parts()) or [content]
    if start and start not in [part.get("Content-ID") for part in inner]:
        raise ValueError(f"no presentation {start}")
    return Submission(fields, [_part(part) for part in inner])


def _envelope(transaction, schema, body):
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n<soap:Envelope xmlns:soap="{SOAP}"><soap:Header>'
            f'<mm7:TransactionID xmlns:mm7="{schema}" soap:mustUnderstand="1">{escape(transaction)}</mm7:TransactionID>'
            f"</soap:Header><soap:Body>{body}</soap:Body></soap:Envelope>\n").encode()


NAMES = {"3gpp": ("StatusCode", "StatusText", "MessageID"),
         "other": ("Request-Status", "Request-Status-Text", "Message-ID")}


def _status(form, code, text):
    name, in_words, _ = NAMES[form]
    return f"<Status><{name}>{escape(code)}</{name}><{in_words}>{escape(text)}</{in_words}></Status>"


def answer(fields, code, text, message_id="", form="3gpp"):
    """SubmitRsp, or RSErrorRsp when nothing was taken."""
    kind = "SubmitRsp" if message_id else "RSErrorRsp"
    identified = f"<{NAMES[form][2]}>{escape(message_id)}</{NAMES[form][2]}>" if message_id else ""
    return _envelope(fields["transaction"], fields["schema"],
                     f'<{kind} xmlns="{fields["schema"]}"><MM7Version>{fields["version"]}</MM7Version>'
                     f"{_status(form, code, text)}{identified}</{kind}>")


def fault(fields, text, code=""):
    """A SOAP fault, with a status in its details when there is a code."""
    detail = (f'<detail><RSErrorRsp xmlns="{fields["schema"]}"><MM7Version>{fields["version"]}</MM7Version>'
              f"{_status('3gpp', code, text)}</RSErrorRsp></detail>") if code else ""
    return _envelope(fields["transaction"], fields["schema"],
                     f"<soap:Fault><faultcode>soap:Client</faultcode><faultstring>{escape(text)}</faultstring>{detail}"
                     "</soap:Fault>")


UNREAD = {"transaction": "", "schema": SCHEMAS + "5-MM7-1-2", "version": "5.2.0"}  # for answers to what cannot be read


def in_multipart(envelope):
    """The type and the octets of a reply whose envelope is a part."""
    return ('multipart/related; boundary="reply"; type="text/xml"; start="<reply>"',
            b"--reply\r\nContent-Type: text/xml; charset=utf-8\r\nContent-ID: <reply>\r\n\r\n" + envelope + b"\r\n--reply--\r\n")
