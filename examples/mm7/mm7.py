"""mm7.py provider.ini +31612345678 "The text" picture.jpg

Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md). Needs pywin32.
"""
import sys

import win32com.client


def check(com_object):
    if com_object.LastError:
        sys.exit(f"Failed: {com_object.LastError} {com_object.GetErrorDescription(com_object.LastError)}")


def send(provider, recipient, text, picture):
    slide = win32com.client.Dispatch("Quorvane.MmsSlide")
    slide.AddText(text)
    slide.AddAttachment(picture)
    check(slide)
    message = win32com.client.Dispatch("Quorvane.MmsMessage")
    message.Subject = "A picture"
    message.AddRecipient(recipient)
    check(message)
    message.AddSlide(slide)

    mm7 = win32com.client.Dispatch("Quorvane.MmsProtocolMm7")
    mm7.ProviderLoadConfig(provider)
    check(mm7)
    mm7.Send(message)
    if mm7.LastError and mm7.ProviderResponse:
        print("The centre said:", mm7.ProviderResponse)
    check(mm7)
    print("Sent, message id", mm7.MessageId)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 5:
        usage()
    send(*sys.argv[1:5])
