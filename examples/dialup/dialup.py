"""dialup.py COM5 ucp|tap 0201234567 0612345678 "The text" [password]

Needs pywin32. Sends one message through a dialled provider.
"""
import sys

import win32com.client


def send(device, kind, dial_string, recipient, text, password=""):
    constants = win32com.client.Dispatch("Quorvane.SmsConstants")
    dialup = win32com.client.Dispatch("Quorvane.SmsProtocolDialup")
    dialup.Device = device
    dialup.ProviderType = constants.asPROVIDERTYPE_TAP_DEFAULT if kind.lower() == "tap" else constants.asPROVIDERTYPE_UCP
    dialup.ProviderDialString = dial_string
    dialup.ProviderPassword = password
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    dialup.Send(message)
    if dialup.LastError:
        sys.exit(f"Failed: {dialup.LastError} {dialup.GetErrorDescription(dialup.LastError)}")
    print("Answer:", dialup.ProviderResponse)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 6 or sys.argv[2].lower() not in ("ucp", "tap"):
        usage()
    send(*sys.argv[1:7])
