"""answer.py COM5 "The answer" [number of messages] [pause in ms]

Needs pywin32. Answers every text that comes from a number, until Ctrl-C or until so many are answered. What was
answered is deleted; what could not be answered is tried again. All else (data, MMS notifications, texts from names)
stays on the device.
"""
import re
import sys
import time

import win32com.client

BEYOND_GSM = re.compile(
    r"[^\n\r -_a-~\xA1\xA3-\xA5\xA7\xBF\xC4-\xC7\xC9\xD1\xD6\xD8\xDC\xDF\xE0\xE4-\xE6\xE8\xE9\xEC\xF1\xF2"
    r"\xF6\xF8\xF9\xFC\u0393\u0394\u0398\u039B\u039E\u03A0\u03A3\u03A6\u03A8\u03A9\u20AC]")


def failed(what):
    if gsm.LastError:
        print(f"{what} failed: {gsm.LastError} {gsm.GetErrorDescription(gsm.LastError)}")
    return gsm.LastError != 0


def is_answered(message):
    if message.Format not in (constants.asMESSAGEFORMAT_TEXT, constants.asMESSAGEFORMAT_UNICODE):
        return False
    if not re.fullmatch(r"\+?[0-9]+", message.Sender):
        return False
    print(f"From {message.Sender}: {message.Data}")
    answer.Recipient = message.Sender
    gsm.Send(answer)
    return not failed(f"The answer to {message.Sender}")


def answer_waiting(most):
    """Answers up to so many of the messages that were received; gives how many it were."""
    answered = 0
    index = 0  # of the first message that has no answer yet
    while answered < most:
        message = gsm.GetMessage(index)
        if gsm.LastError:
            break
        if is_answered(message):
            gsm.DeleteMessage(index)
            if failed("DeleteMessage"):
                sys.exit(1)  # or it would be answered again and again
            answered += 1
        else:
            index += 1
    return answered


def run(device, text, wanted="0", pause="5000"):
    gsm.Device = device
    answer.Data = text
    answer.Format = (constants.asMESSAGEFORMAT_UNICODE_MULTIPART if BEYOND_GSM.search(text)
                     else constants.asMESSAGEFORMAT_TEXT_MULTIPART)
    answered, most = 0, int(wanted) or float("inf")
    while True:
        gsm.Receive()
        if failed("Receive"):
            sys.exit(1)
        answered += answer_waiting(most - answered)
        if answered >= most:
            break
        time.sleep(int(pause) / 1000)
    print(f"Done: {answered} answered")


def is_number(text):
    return re.fullmatch("[0-9]{1,9}", text)


def usage():
    print(__doc__, file=sys.stderr)
    sys.exit(2)


if __name__ == "__main__":
    if len(sys.argv) < 3 or not all(map(is_number, sys.argv[3:5])):
        usage()
    constants = win32com.client.Dispatch("Quorvane.SmsConstants")
    gsm = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")
    answer = win32com.client.Dispatch("Quorvane.SmsMessage")
    run(*sys.argv[1:5])
