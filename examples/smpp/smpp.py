"""smpp.py send 127.0.0.1 2775 user password +31612345678 "The text" | receive 127.0.0.1 2775 user password [seconds]

Needs pywin32.
"""
import sys

import win32com.client


def check(smpp):
    if smpp.LastError:
        sys.exit(f"Failed: {smpp.LastError} {smpp.GetErrorDescription(smpp.LastError)}")


def send(smpp, recipient, text):
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    message.Format = 2 if all(ord(char) < 256 for char in text) else 22  # text or Unicode, split when long
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


if __name__ == "__main__":
    protocol = win32com.client.Dispatch("Quorvane.SmsProtocolSmpp")
    protocol.Server = sys.argv[2]
    protocol.ServerPort = int(sys.argv[3])
    protocol.SystemID = sys.argv[4]
    protocol.SystemPassword = sys.argv[5]
    protocol.Connect()
    check(protocol)
    {"send": send, "receive": receive}[sys.argv[1]](protocol, *sys.argv[6:])
    protocol.Disconnect()
