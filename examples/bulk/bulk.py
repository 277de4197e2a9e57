"""bulk.py 127.0.0.1 2775 user password numbers.txt "The text" [messages per second]

Needs pywin32. Sends one text to all numbers of a file, a line each, at a steady rate, and tells at the end what became
of it.
"""
import collections
import re
import sys
import time

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def check(smpp, what):
    if smpp.LastError:
        sys.exit(f"{what} failed: {smpp.LastError} {smpp.GetErrorDescription(smpp.LastError)}")


def status_of(smpp, reference):
    status = smpp.QueryStatus(reference, False)
    check(smpp, "QueryStatus")
    return status


def send_all(smpp, constants, recipients, text):
    """The references of what was sent."""
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Data = text
    message.Format = (constants.asMESSAGEFORMAT_UNICODE_MULTIPART if BEYOND_GSM.search(text)
                      else constants.asMESSAGEFORMAT_TEXT_MULTIPART)
    message.RequestDeliveryStatus = True
    sent, started = [], time.monotonic()
    for recipient in recipients:
        message.Recipient = recipient
        reference = smpp.Send(message)
        if smpp.LastError:
            print(f"{recipient} not sent: {smpp.LastError} {smpp.GetErrorDescription(smpp.LastError)}")
        else:
            sent.append(reference)
    # Send only queues. The server has answered the last message when its status is no longer this one.
    while sent and status_of(smpp, sent[-1]).Status == constants.asDELIVERYSTATUS_SUBMITREQUESTED:
        smpp.Sleep(10)
    seconds = max(time.monotonic() - started, 0.01)
    timed = len(sent) - 1 if len(sent) > 1 else len(sent)  # the first goes at once
    print(f"Sent {len(sent)} in {seconds:.1f} s: {timed / seconds:.1f} messages/s")
    return sent


def states_of(smpp, sent):
    """How many are in which state: as long as there are open ones, but no more than a minute."""
    for _ in range(120):
        found = [status_of(smpp, reference) for reference in sent]
        if all(status.IsCompleted for status in found):
            break
        smpp.Sleep(500)
    return collections.Counter(status.StatusDescription for status in found)


def bulk(server, port, user, password, file, text, rate="10"):
    try:
        with open(file, encoding="utf-8") as lines:
            recipients = [line.strip() for line in lines if line.strip()]
    except (OSError, UnicodeError) as error:
        sys.exit(f"{file} cannot be read: {error}")
    constants = win32com.client.Dispatch("Quorvane.SmsConstants")
    smpp = win32com.client.Dispatch("Quorvane.SmsProtocolSmpp")
    smpp.Server = server
    smpp.ServerPort = int(port)
    smpp.SystemID = user
    smpp.SystemPassword = password
    smpp.SystemCharSet = constants.asSMPPCHARSET_GSM
    smpp.SystemThroughput = int(rate)
    smpp.Connect()
    check(smpp, "Connect")
    sent = send_all(smpp, constants, recipients, text)
    states = states_of(smpp, sent)
    smpp.Disconnect()
    for state, count in states.items():
        print(f"{state}: {count}")
    if len(sent) < len(recipients):
        print("Not sent:", len(recipients) - len(sent))
    if states["Delivered"] < len(recipients):
        sys.exit(1)
    print(f"Done: all {states['Delivered']} delivered")


def is_number(text):
    return re.fullmatch("[0-9]{1,9}", text)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 7 or not all(map(is_number, sys.argv[2:3] + sys.argv[7:8])):
        usage()
    bulk(*sys.argv[1:8])
