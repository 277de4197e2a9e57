"""alarm.py COM5 "The text" +31612345678 [+31687654321 ...]

Needs pywin32. Sends an alarm and sees to it that somebody has it: to the first number, and when its phone does not
confirm within a minute, to the next.
"""
import re
import sys
import time

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def failed(gsm, what):
    if gsm.LastError:
        print(f"{what} failed: {gsm.LastError} {gsm.GetErrorDescription(gsm.LastError)}")
    return gsm.LastError != 0


def has_reached(gsm, message, recipient):
    constants = win32com.client.Dispatch("Quorvane.SmsConstants")
    message.Recipient = recipient
    message.Format = (constants.asMESSAGEFORMAT_UNICODE_MULTIPART if BEYOND_GSM.search(message.Data)
                      else constants.asMESSAGEFORMAT_TEXT_MULTIPART)
    reference = gsm.Send(message)
    if failed(gsm, f"Sending to {recipient}"):
        return False
    print(f"Sent to {recipient}, reference {reference}")
    for _ in range(6):
        status = gsm.QueryStatus(reference)
        if failed(gsm, f"The report of {recipient}"):
            return False
        print(f"{recipient}: {status.StatusDescription}")
        if status.IsCompleted:
            return status.Status == constants.asDELIVERYSTATUS_DELIVERED
        time.sleep(11)  # reports are read from the modem every 10 s at the most
    return False


def alarm(device, text, *recipients):
    gsm = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")
    gsm.Device = device
    message = win32com.client.Dispatch("Quorvane.SmsMessage")
    message.Data = text
    message.RequestDeliveryStatus = True
    for recipient in recipients:
        if has_reached(gsm, message, recipient):
            print(f"Done: {recipient} has the alarm")
            return
    sys.exit("Nobody has the alarm")


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 4:
        usage()
    alarm(*sys.argv[1:])
