"""gsm.py send COM5 +31612345678 "The text" | receive COM5 | report COM5 +31612345678 "The text" | pin COM5 1234

Needs pywin32.
"""
import sys
import time

import win32com.client


def check(gsm):
    if gsm.LastError:
        sys.exit(f"Failed: {gsm.LastError} {gsm.GetErrorDescription(gsm.LastError)}")


def send(gsm, recipient, text, with_report=False):
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    message.Format = 2 if all(ord(char) < 256 for char in text) else 22  # text or Unicode, split when long
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


if __name__ == "__main__":
    protocol = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")
    protocol.Device = sys.argv[2]
    {"send": send, "receive": receive, "report": report, "pin": pin}[sys.argv[1]](protocol, *sys.argv[3:])
