"""gateway.py 127.0.0.1 8080 +31612345678 "The text" [account password]

Needs pywin32. Sends one SMS through an HTTP gateway, whose requests two templates describe.
"""
import re
import sys

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def send(server, port, recipient, text, account="", password=""):
    gateway = win32com.client.Dispatch("Quorvane.SmsProtocolHttp")
    gateway.ProviderHost = server
    gateway.ProviderPort = int(port)
    # The templates: a request as the provider describes it, from behind "host/", with a placeholder where the number
    # and where the text stand. What follows "?" is posted. These are for a gateway that answers OK or ERROR;
    # docs/http.md has all placeholders.
    gateway.URLText = "send?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%"
    gateway.URLUnicode = "send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%"
    gateway.ProviderSuccessResponse = "OK"
    gateway.ProviderErrorResponse = "ERROR"
    gateway.ProviderWebAccount = account
    gateway.ProviderWebPassword = password
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Recipient = recipient
    message.Data = text
    message.Format = 20 if BEYOND_GSM.search(text) else 0  # Unicode or text
    gateway.Send(message)
    if gateway.LastError:
        sys.exit(f"Failed: {gateway.LastError} {gateway.GetErrorDescription(gateway.LastError)}")
    print("Answer:", gateway.ProviderResponse)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 5 or not re.fullmatch("[0-9]{1,9}", sys.argv[2]):
        usage()
    send(*sys.argv[1:7])
