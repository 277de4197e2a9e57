#!/usr/bin/env python3
"""The main job, against the lab's counterparts: starts them, runs the demo scripts under Wine and shows both sides."""
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
LAB = ROOT / "lab"
WORK = ROOT / "build/demo"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def cscript(name, *arguments):
    done = subprocess.run([ROOT / "scripts/in-wine.sh", "cscript", "//nologo", windows_path(LAB / name), *arguments],
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
    print(done.stdout.decode("utf-8", "replace").replace("\r", ""), end="")
    return done.returncode


def show(title, file, indent="    "):
    print(f"\n{title}")
    for line in file.read_text(encoding="utf-8", errors="replace").splitlines():
        if line.strip():
            print(indent + line)


def counterpart(name, log, ready, *arguments):
    """Starts a counterpart of the lab and waits until it is ready."""
    process = subprocess.Popen([sys.executable, LAB / name, *map(str, arguments)], stdout=open(log, "w"), stderr=subprocess.STDOUT)
    while ready not in log.read_text():
        if process.poll() is not None:
            sys.exit(f"{name} does not start:\n{log.read_text()}")
        time.sleep(0.02)
    return process


def gsm():
    print("SMS through a GSM modem on COM5")
    print("-------------------------------")
    log, modem_log = WORK / "gsm.log", WORK / "modem.txt"
    link = pathlib.Path(os.environ["WINEPREFIX"]) / "dosdevices/com5"
    modem = counterpart("modem.py", modem_log, "ready", "--link", link,
                        "--message", "text SM +31611111111 Hello from the first phone",
                        "--message", "parts SM +31622222222 2,3,1 This message came in three parts, the second one first")
    try:
        code = cscript("demo_gsm.vbs", "COM5", windows_path(log), windows_path(WORK / "gsm.ini"))
    finally:
        modem.terminate()
        modem.wait()
    show("The modem saw:", modem_log)
    show("Log file:", log)
    show("Activity file:", WORK / "gsm.ini")
    return code


def smpp():
    print("\nSMS through an SMPP server")
    print("--------------------------")
    log, server_log = WORK / "smpp.log", WORK / "smsc.txt"
    server = counterpart("smsc.py", server_log, "ready", "--port", "0", "--deliver", "+31611111111 Hello from the first phone",
                         "--deliver", "parts:2,1 +31622222222 This message came in two parts")
    port = server_log.read_text().split()[-1]
    try:
        code = cscript("demo_smpp.vbs", port, windows_path(log))
    finally:
        server.terminate()
        server.wait()
    show("The server saw:", server_log)
    print(f"\nLog file: {log.relative_to(ROOT)}")
    return code


def main():
    WORK.mkdir(parents=True, exist_ok=True)
    for old in WORK.iterdir():
        old.unlink()
    return gsm() or smpp()


if __name__ == "__main__":
    sys.exit(main())
