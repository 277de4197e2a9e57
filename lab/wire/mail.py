"""Mails of MM4, as Python's `email` reads them."""
import email
import email.policy

# One field name of theirs has a blank in it, at which a reader of RFC 5322 takes the header for over.
ODD, MENDED = b"\r\nX-Mms-Ack Request: ", b"\r\nX-Mms-Ack-Request: "


def read(octets):
    return email.message_from_bytes(octets.replace(ODD, MENDED, 1), policy=email.policy.default)
