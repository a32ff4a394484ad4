#!/usr/bin/env python3
"""Writes random and mutated address texts with what an independent reading
expects of each, for the address tests to compare against.

The host is judged by Python's ipaddress module; the "host:port" rules are
written here from their description, with regular expressions, not after our
C++ code. Each output line is

    text-as-hex TAB kind TAB address-bytes-hex TAB port TAB scope | system-reading

kind is "v4", "v6" or "bad". ipaddress refuses leading zeros in the IPv4
part that ends an IPv6 address, which the system's reader takes as decimal;
for such texts the system reading is that decimal reading (kind, bytes, port
and scope as before), otherwise "-". The first line names the seed and the
counts.
"""

import argparse
import ipaddress
import random
import re

# strtoull's white space, the only characters that may surround the port.
SPACE = " \t\n\v\f\r"
PORT = re.compile(r"[ \t\n\v\f\r]*\+?([0-9]+)[ \t\n\v\f\r]*\Z")
BRACKETED = re.compile(r"\[([^\]]*)\](?::(.*))?\Z", re.S)
SCOPE = re.compile(r"([^%]*)%([0-9]+)\Z", re.S)

ALPHABET = "0123456789abcdefABCDEF:.[]%" + " \t+-x/\r\n" + "\xa0\xe9"

# Written first: the cases the rules name and the tricky ones.
FIXED = [
    "10.0.0.1:22", "10.0.0.1", "0.0.0.0", "255.255.255.255", "255.255.255.255:22", "10.0.0.1:70000",
    "10.0.0.1:65535", "10.0.0.1:65536", "10.0.0.1:22 \t\r\n", "10.0.0.1:22x", "10.0.0.1:-1", "10.0.0.1:+22",
    "10.0.0.1:", "", ":22", " 10.0.0.1", "10.0.0.1 ", "010.0.0.1", "1.2.3", "1.2.3.4.5", "[10.0.0.1]:22",
    "[fe80::1]:2222", "fe80::1", "fe80::1]", "x[::1]:22", "[::1", "[::1]", "[::1]x:22", "[::1]:22:", "[::]:0",
    "[FE80:0000::0001]:7", "[fe80::1%3]:22", "fe80::1%0", "fe80::1%4294967295", "fe80::1%4294967296",
    "fe80::1%eth0", "fe80::1%", "fe80::1%%3", "[fe80::1]%3", "10.0.0.1%3", "::ffff:10.0.0.1", "::ffff:010.0.0.1",
    "[64:ff9b::10.0.0.1]:53", "::1.2.3", "1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8:9", "1::2::3", "12345::1",
]


def read_port(text):
    match = PORT.match(text)
    if not match or int(match.group(1)) > 0xFFFF:
        return None
    return int(match.group(1))


def split(text):
    """(host, port), or None when the text is not "host" or "host:port"."""
    if text.count(":") == 0:
        return text, 0
    if text.count(":") == 1:
        host, port = text.split(":")
        port = read_port(port)
        return None if port is None else (host, port)
    if "[" not in text and "]" not in text:
        return text, 0
    match = BRACKETED.match(text)
    if not match or "[" not in text[:1]:
        return None
    host, port = match.group(1), match.group(2)
    if port is None:
        return host, 0
    if ":" in port:
        return None
    port = read_port(port)
    return None if port is None else (host, port)


EMBEDDED_IPV4 = re.compile(r"(.*:)([0-9]+(?:\.[0-9]+){3})((?:%[0-9]+)?)\Z", re.S)


def decimal_reading(text):
    """The reading of text with leading zeros dropped from the IPv4 part of
    an IPv6 address, or None when it has no such part."""
    parts = split(text)
    embedded = EMBEDDED_IPV4.match(parts[0]) if parts else None
    if not embedded or not re.search(r"(^|\.)0[0-9]", embedded.group(2)):
        return None
    octets = ".".join(str(int(octet)) for octet in embedded.group(2).split("."))
    kind, packed, _, scope = expect(embedded.group(1) + octets + embedded.group(3))
    return None if kind != "v6" else (kind, packed, parts[1], scope)


def expect(text):
    """(kind, address bytes, port, scope) as the reading expects."""
    parts = split(text)
    if parts is None:
        return "bad", b"", 0, 0
    host, port = parts
    try:
        address = ipaddress.IPv4Address(host)
        if address != ipaddress.IPv4Address("255.255.255.255"):
            return "v4", address.packed, port, 0
    except ValueError:
        pass
    scope = 0
    scoped = SCOPE.match(host)
    if scoped:
        host, scope = scoped.group(1), int(scoped.group(2))
        if scope > 0xFFFFFFFF:
            return "bad", b"", 0, 0
    try:
        # ipaddress reads its own (non-numeric) scopes: give it the address alone.
        if "%" not in host:
            return "v6", ipaddress.IPv6Address(host).packed, port, scope
    except ValueError:
        pass
    return "bad", b"", 0, 0


class Texts:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def ipv4(self):
        return ".".join(str(self.random.randrange(256)) for _ in range(4))

    def ipv6(self):
        r = self.random
        address = ipaddress.IPv6Address(r.getrandbits(128))
        if r.random() < 0.3:
            # Runs of zero groups, so that "::" gets written.
            groups = [0 if r.random() < 0.6 else r.randrange(0x10000) for _ in range(8)]
            address = ipaddress.IPv6Address(int("".join("%04x" % g for g in groups), 16))
        style = r.randrange(5)
        if style == 0:
            text = address.exploded
        elif style == 1:
            text = address.compressed.upper()
        elif style == 2:
            # An embedded IPv4 address in the last 32 bits.
            text = "::ffff:" + self.ipv4() if r.random() < 0.5 else "64:ff9b::" + self.ipv4()
        elif style == 3:
            # Leading zeros within groups.
            text = ":".join("%0*x" % (r.randrange(1, 5), int(g, 16)) for g in address.exploded.split(":"))
        else:
            text = address.compressed
        if r.random() < 0.2:
            text += "%" + str(r.choice([0, 1, 3, 42, 4294967295, 4294967296, r.getrandbits(32)]))
        return text

    def port(self):
        r = self.random
        port = str(r.choice([0, 1, 22, 65535, 65536, 70000, r.randrange(65536)]))
        if r.random() < 0.2:
            port = r.choice(["", "+", "-", "0", " ", "00"]) + port
        if r.random() < 0.2:
            port += r.choice([" ", "\t", " \r\n", "x", " 1", "."])
        return port

    def valid_looking(self):
        r = self.random
        if r.random() < 0.45:
            host = self.ipv4()
            if r.random() < 0.1:
                host = ".".join(("0" + part) if r.random() < 0.5 else part for part in host.split("."))
            return host + ":" + self.port() if r.random() < 0.6 else host
        host = self.ipv6()
        if r.random() < 0.6:
            return "[" + host + "]:" + self.port()
        return "[" + host + "]" if r.random() < 0.3 else host

    def mutated(self, text):
        r = self.random
        for _ in range(r.randrange(1, 4)):
            position = r.randrange(len(text) + 1)
            change = r.randrange(5)
            if change == 0 and text:
                text = text[:position] + text[position + 1:]
            elif change == 1:
                text = text[:position] + r.choice(ALPHABET) + text[position:]
            elif change == 2 and position < len(text):
                text = text[:position] + r.choice(ALPHABET) + text[position + 1:]
            elif change == 3:
                end = r.randrange(position, len(text) + 1)
                text = text[:end] + text[position:end] + text[end:]
            else:
                text = text[position:] + text[:position]
        return text

    def noise(self):
        r = self.random
        return "".join(r.choice(ALPHABET) for _ in range(r.randrange(0, 24)))

    def next(self):
        roll = self.random.random()
        if roll < 0.4:
            return self.valid_looking()
        if roll < 0.9:
            return self.mutated(self.valid_looking())
        return self.noise()


def line(reading):
    if reading is None:
        return "-"
    kind, packed, port, scope = reading
    return "%s\t%s\t%d\t%d" % (kind, packed.hex(), port, scope)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--count", type=int, required=True)
    parser.add_argument("--output", required=True)
    arguments = parser.parse_args()

    texts = Texts(arguments.seed)
    with open(arguments.output, "w", encoding="ascii", newline="\n") as output:
        output.write("# seed %d: %d fixed and %d generated texts\n" % (arguments.seed, len(FIXED), arguments.count))
        for index in range(len(FIXED) + arguments.count):
            text = FIXED[index] if index < len(FIXED) else texts.next()
            output.write("%s\t%s|%s\n" % (text.encode("latin-1").hex(), line(expect(text)), line(decimal_reading(text))))


if __name__ == "__main__":
    main()
