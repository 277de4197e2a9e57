"""mm1.py send provider.ini +31612345678 "The text" picture.jpg [modem] | receive provider.ini COM5 folder

Needs pywin32. A modem that is given by its name in Windows dials; without one, or with a port, the connection of the
machine is used (docs/mm1.md).
"""
import os
import re
import sys

import win32com.client


def check(com_object):
    if com_object.LastError:
        sys.exit(f"Failed: {com_object.LastError} {com_object.GetErrorDescription(com_object.LastError)}")


def connect(mm1):
    mm1.Connect()
    check(mm1)


def use(mm1, device):
    if device:
        mm1.Device = device
    if not device or re.fullmatch(r"COM\d+:?", device, re.I):
        mm1.AdvancedSettings = "UseExistingConnection=1"


def send(mm1, recipient, text, picture, modem=""):
    slide = win32com.client.Dispatch("Quorvane.MmsSlide")
    slide.AddText(text)
    slide.AddAttachment(picture)
    check(slide)
    message = win32com.client.Dispatch("Quorvane.MmsMessage")
    message.Subject = "A picture"
    message.AddRecipient(recipient)
    check(message)
    message.AddSlide(slide)
    use(mm1, modem)
    connect(mm1)
    try:
        mm1.Send(message)
        check(mm1)
        print("Sent, message id", mm1.MessageId)
    finally:
        mm1.Disconnect()


def waiting(mm1):
    """Where the messages lie whose notifications the modem has."""
    notification = mm1.GetFirstMessage()
    while mm1.LastError == 0:
        if location := re.search(r"\bURL=(\S+)", notification.Data):
            yield location[1]
        notification = mm1.GetNextMessage()
    if mm1.LastError != 33060:  # no more messages
        check(mm1)


def receive(mm1, device, folder):
    use(mm1, device)
    locations = list(waiting(mm1))  # all of them first: while a connection is dialled, the modem tells nothing
    connect(mm1)
    try:
        for number, location in enumerate(locations, 1):
            message = mm1.Retrieve(location)
            check(mm1)
            print(f"From {message.From}: {message.Subject}")
            message.SaveToFile(os.path.join(folder, f"message{number}.mms"), 2)  # as it was received
            check(message)
    finally:
        mm1.Disconnect()


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    jobs = {"send": (send, [6, 7]), "receive": (receive, [5])}
    job, counts = jobs.get("".join(sys.argv[1:2]), (usage, []))
    if len(sys.argv) not in counts:
        usage()
    protocol = win32com.client.Dispatch("Quorvane.MmsProtocolMm1")
    protocol.ProviderLoadConfig(sys.argv[2])
    check(protocol)
    job(protocol, *sys.argv[3:])
