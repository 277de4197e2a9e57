"""What the counterparts read and write, by tables and readers of the lab's own."""
