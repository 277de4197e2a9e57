"""Every include of src/ goes down a floor or stays on its own; channels never include one another; no circles."""
import pathlib
import re
import sys

SOURCES = pathlib.Path(__file__).parents[2] / "src"
FLOORS = ["foundation", "foundation/serial foundation/net foundation/http foundation/ras", "frame",
          "Common/GsmPdu", "Common/SmppPdu Common/UcpTap Common/Wsp Common/Mime", "sms", "gsm smpp http dialup smsdata", "mms"]
FLOOR = {room: number for number, rooms in enumerate(FLOORS) for room in rooms.split()}
TOP = len(FLOORS)  # the automation classes, wherever they stand


def place(file):
    room = file.rpartition("/")[0]
    return (TOP, "") if re.search(r"Auto\.(cpp|h)$", file) or file == "NeltCtrl.h" else (FLOOR[room], room)


includes = {str(path.relative_to(SOURCES)): re.findall(r'^#include "(.+)"', path.read_text(), re.M)
            for path in SOURCES.rglob("*") if path.suffix in (".cpp", ".h")}
wrong = []
for file, included in includes.items():
    (floor, room), edge = place(file), re.search(r"(Auto|Win|Posix)\.(cpp|h)$", file)
    for other in included:
        there, other_room = place(other)
        if there > floor or (there == floor and room != other_room) or \
                (not edge and re.search(r"(Auto|Win|Posix)\.h$", other)):
            wrong.append(f"{file} includes {other}")


def circle(file, path):
    return path[path.index(file):] + [file] if file in path else next(
        filter(None, (circle(other, path + [file]) for other in includes.get(file, []))), None)


wrong += [" -> ".join(found) for found in {tuple(circle(file, []) or ()) for file in includes} if found]
print("\n".join(wrong) or f"{len(includes)} files keep to their floors")
sys.exit(bool(wrong))
