"""mm4.py 127.0.0.1 2525 account password 31612345678 example.net "The text" picture.jpg ...

Needs pywin32. Sends a text and pictures to a peer MMS server.
"""
import re
import sys

import win32com.client


def check(item, what):
    if item.LastError:
        sys.exit(f"{what}: {item.LastError} {item.GetErrorDescription(item.LastError)}")


def send(server, port, account, password, recipient, domain, text, *pictures):
    peer = win32com.client.Dispatch("Quorvane.MmsProtocolMm4")
    peer.ProviderHost = server
    peer.ProviderPort = int(port)
    peer.ProviderAccount = account
    peer.ProviderPassword = password
    peer.ProviderDomain = domain

    message = win32com.client.Dispatch("Quorvane.MmsMessage")
    message.From = "+31600000001"
    message.Subject = "Pictures"
    message.AddRecipient(recipient)
    check(message, "The recipient")

    slide = win32com.client.Dispatch("Quorvane.MmsSlide")
    slide.AddText(text)
    for picture in pictures:
        slide.AddAttachment(picture)
        check(slide, picture)
    message.AddSlide(slide)
    check(message, "The slide")

    peer.Send(message)
    check(peer, "Send failed")
    print("Answer:", peer.ProviderResponse)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 8 or not re.fullmatch("[0-9]{1,9}", sys.argv[2]):
        usage()
    send(*sys.argv[1:])
