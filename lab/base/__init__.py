"""What the counterparts share: programs, servers, dialogues over a line, and scenarios of misbehaviour."""
