"""smpp.py send 127.0.0.1 2775 user password +31612345678 "The text" | receive 127.0.0.1 2775 user password [seconds]

Needs pywin32.
"""
import re
import sys

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def check(smpp):
    if smpp.LastError:
        sys.exit(f"Failed: {smpp.LastError} {smpp.GetErrorDescription(smpp.LastError)}")


def send(smpp, recipient, text):
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    message.Format = 22 if BEYOND_GSM.search(text) else 2  # Unicode or text, split when long
    message.RequestDeliveryStatus = True
    reference = smpp.Send(message)
    check(smpp)
    status = smpp.QueryStatus(reference, True)
    check(smpp)
    print("Status:", status.StatusDescription)


def receive(smpp, seconds="2"):
    for _ in range(2 * int(seconds)):
        smpp.Sleep(500)
        message = smpp.GetFirstMessage()
        while smpp.LastError == 0:
            print(f"From {message.Sender}: {message.Data}")
            message = smpp.GetNextMessage()


def is_number(text):
    return re.fullmatch("[0-9]{1,9}", text)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    jobs = {"send": (send, [8]), "receive": (receive, [6, 7])}
    job, counts = jobs.get("".join(sys.argv[1:2]), (usage, []))
    if len(sys.argv) not in counts or not is_number(sys.argv[3]):
        usage()
    if job == receive and not all(map(is_number, sys.argv[6:])):
        usage()
    protocol = win32com.client.Dispatch("Quorvane.SmsProtocolSmpp")
    protocol.Server = sys.argv[2]
    protocol.ServerPort = int(sys.argv[3])
    protocol.SystemID = sys.argv[4]
    protocol.SystemPassword = sys.argv[5]
    protocol.SystemCharSet = 1  # asSMPPCHARSET_GSM
    protocol.Connect()
    check(protocol)
    job(protocol, *sys.argv[6:])
    protocol.Disconnect()
