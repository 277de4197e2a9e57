"""gsm.py send COM5 +31612345678 "The text" | receive COM5 | report COM5 +31612345678 "The text" | pin COM5 1234

Needs pywin32.
"""
import re
import sys
import time

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def check(gsm):
    if gsm.LastError:
        sys.exit(f"Failed: {gsm.LastError} {gsm.GetErrorDescription(gsm.LastError)}")


def send(gsm, recipient, text, with_report=False):
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    message.Format = 22 if BEYOND_GSM.search(text) else 2  # Unicode or text, split when long
    message.RequestDeliveryStatus = with_report
    reference = gsm.Send(message)
    check(gsm)
    print("Sent, reference", reference)
    return reference


def receive(gsm):
    gsm.Receive()
    check(gsm)
    message = gsm.GetFirstMessage()
    while gsm.LastError == 0:
        print(f"From {message.Sender}: {message.Data}")
        message = gsm.GetNextMessage()


def report(gsm, recipient, text):
    reference = send(gsm, recipient, text, True)
    while True:
        time.sleep(11)
        status = gsm.QueryStatus(reference)
        check(gsm)
        print("Status:", status.StatusDescription)
        if status.IsCompleted:
            return


def pin(gsm, code):
    gsm.EnterPin(code)
    check(gsm)
    print("PIN accepted")


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    jobs = {"send": (send, 5), "receive": (receive, 3), "report": (report, 5), "pin": (pin, 4)}
    job, count = jobs.get("".join(sys.argv[1:2]), (usage, 0))
    if len(sys.argv) != count:
        usage()
    protocol = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")
    protocol.Device = sys.argv[2]
    job(protocol, *sys.argv[3:])
