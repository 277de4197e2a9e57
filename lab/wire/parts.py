"""Messages of several parts, with the concatenation element of 3GPP TS 23.040 section 9.2.3.24.1."""


def in_parts(order, text):
    """The user data header, without its length, and the text of each part, in an order such as "2,1,3"."""
    numbers = [int(number) for number in order.split(",")]
    if sorted(numbers) != list(range(1, len(numbers) + 1)):
        raise ValueError(f"{order} is not an order of parts")
    size = -(-len(text) // len(numbers))
    return [(bytes([0, 3, 77, len(numbers), number]), text[(number - 1) * size:number * size]) for number in numbers]
