"""pager.py 127.0.0.1 4444 5551212 "The text" [password]

Needs pywin32. Sends one page through a paging server.
"""
import re
import sys

import win32com.client


def send(server, port, recipient, text, password=""):
    pager = win32com.client.Dispatch("Quorvane.PagerProtocolSnpp")
    pager.Server = server
    pager.ServerPort = int(port)
    pager.ProviderPassword = password
    message = win32com.client.Dispatch("Quorvane.PagerMessage")
    message.Recipient = recipient
    message.Data = text
    pager.Send(message)
    if pager.LastError:
        sys.exit(f"Failed: {pager.LastError} {pager.GetErrorDescription(pager.LastError)}")
    print("Answer:", pager.ProviderResponse)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 5 or not re.fullmatch("[0-9]{1,9}", sys.argv[2]):
        usage()
    send(*sys.argv[1:6])
