"""pager.py 127.0.0.1 4444 5551212 "The text" [password]

Needs pywin32. Sends one page through a paging server.
"""
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


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    send(*sys.argv[1:6])
