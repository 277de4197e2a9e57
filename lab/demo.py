#!/usr/bin/env python3
"""The main job, against the lab's counterparts: starts them, runs the demo scripts under Wine and shows both sides."""
import sys

from base import wine
from base.launch import LAB, Counterpart
from base.wine import PREFIX, ROOT, windows_path

WORK = ROOT / "build/demo"


def play(script, *arguments):
    """The exit code of a script, which is a failure unless "Done" is the last that it prints."""
    code, output = wine.script(script, *arguments)
    done = output.endswith("Done\n")
    print(output.removesuffix("Done\n") if done else output, end="")
    if code == 0 and not done:
        print(f"{script.name} stopped at an error that cscript does not print")
        return 1
    return code


def show(title, file, indent="    "):
    print(f"\n{title}")
    for line in file.read_text(encoding="utf-8", errors="replace").splitlines():
        if line.strip():
            print(indent + line)


def gsm():
    print("SMS through a GSM modem on COM5")
    print("-------------------------------")
    log = WORK / "gsm.log"
    link = PREFIX / "dosdevices/com5"
    modem = Counterpart("modem.py", WORK, "--link", link,
                        "--message", "text SM +31611111111 Hello from the first phone",
                        "--message", "parts SM +31622222222 2,3,1 This message came in three parts, the second one first")
    try:
        code = play(LAB / "demo_gsm.vbs", "COM5", windows_path(log), windows_path(WORK / "gsm.ini"))
    finally:
        modem.close()
    show("The modem saw:", modem.log)
    show("Log file:", log)
    show("Activity file:", WORK / "gsm.ini")
    return code


def smpp():
    print("\nSMS through an SMPP server")
    print("--------------------------")
    log = WORK / "smpp.log"
    server = Counterpart("smsc.py", WORK, "--port", "0", "--deliver", "+31611111111 Hello from the first phone",
                         "--deliver", "parts:2,1 +31622222222 This message came in two parts")
    try:
        code = play(LAB / "demo_smpp.vbs", server.port, windows_path(log))
    finally:
        server.close()
    show("The server saw:", server.log)
    print(f"\nLog file: {log.relative_to(ROOT)}")
    return code


def http():
    print("\nSMS through an HTTP gateway")
    print("---------------------------")
    log = WORK / "http.log"
    gateway = Counterpart("gateway.py", WORK, "--port", "0", "--account", "demo:secret")
    try:
        code = play(LAB / "demo_http.vbs", gateway.port, windows_path(log))
    finally:
        gateway.close()
    show("The gateway saw:", gateway.log)
    print(f"\nLog file: {log.relative_to(ROOT)}")
    return code


def pager():
    print("\nA page through a paging server")
    print("------------------------------")
    log = WORK / "pager.log"
    server = Counterpart("pager.py", WORK, "--port", "0", "--password", "secret")
    try:
        code = play(LAB / "demo_pager.vbs", server.port, windows_path(log))
    finally:
        server.close()
    show("The server saw:", server.log)
    show("Log file:", log)
    return code


def dialup(kind):
    print(f"\nA message through a dialled provider, over {kind}")
    print("---------------------------------------------")
    log = WORK / f"dialup_{kind}.log"
    link = PREFIX / "dosdevices/com6"
    modem = Counterpart("modem.py", WORK, "--link", link, "--provider", kind.lower(), "--provider-password", "secret")
    try:
        code = play(LAB / "demo_dialup.vbs", "COM6", kind, windows_path(log))
    finally:
        modem.close()
    show("The provider saw:", modem.log)
    show("Log file:", log)
    return code


def main():
    WORK.mkdir(parents=True, exist_ok=True)
    for old in WORK.iterdir():
        old.unlink()
    return gsm() or smpp() or http() or pager() or dialup("UCP") or dialup("TAP")


if __name__ == "__main__":
    sys.exit(main())
