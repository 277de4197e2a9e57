"""push.py COM5 +31612345678 http://www.example.org/ "The text"

Needs pywin32. Sends a text with a link that the phone offers to open.
"""
import re
import sys

import win32com.client


def check(thing, what):
    if thing.LastError:
        sys.exit(f"{what} failed: {thing.LastError} {thing.GetErrorDescription(thing.LastError)}")


def send(device, recipient, url, text):
    if re.search("[^ -~]", text):
        sys.exit("The text is not ASCII: docs/content.md says how other letters go")
    constants = win32com.client.Dispatch("Quorvane.SmsConstants")
    content = win32com.client.Dispatch("Quorvane.SmsDataWapPush")
    content.ConnectionType = constants.asWAPPUSH_SERVICE_INDICATION
    content.URL = url
    content.Description = text
    content.SignalAction = constants.asWAPPUSHSIGNAL_HIGH
    content.Encode()
    check(content, "Encode")
    print("Content:", content.EncodedMessage)

    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = content.EncodedMessage
    message.Format = constants.asMESSAGEFORMAT_DATA_UDH
    gsm = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")
    gsm.Device = device
    reference = gsm.Send(message)
    check(gsm, "Send")
    print("Sent, reference", reference)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 5:
        usage()
    send(*sys.argv[1:5])
