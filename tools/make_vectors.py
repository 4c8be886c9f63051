#!/usr/bin/env python3
"""The format's forms, written down a second time and slowly, for known answers.

Prints the worked example of docs/FORMAT.md. Uses nothing of the product: hmac and hashlib of Python,
and the openssl program for AES.
"""
import hashlib
import hmac
import subprocess

KEY_DATA = bytes.fromhex(
    "eb3828a69bedec5e11cd9d74d7a3821ce6e1881e0c5bd67c5241702d53a2758a"
    "cff79270712484827f7eec6abdd0f342")
KEY, VECTOR_MATERIAL = KEY_DATA[:32], KEY_DATA[32:]
BLOCK_SIZE = 4096
ALPHABET = ",-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"


def aes(mode, vector, data):
    command = ["openssl", "enc", f"-aes-256-{mode}", "-K", KEY.hex(), "-iv", vector.hex(), "-nopad"]
    return subprocess.run(command, input=data, stdout=subprocess.PIPE, check=True).stdout


def vector(seed):
    text = VECTOR_MATERIAL + (seed % 2**64).to_bytes(8, "little")
    return hmac.new(KEY, text, hashlib.sha1).digest()[:16]


def shuffle(data):
    result = bytearray(data)
    for i in range(1, len(result)):
        result[i] ^= result[i - 1]
    return bytes(result)


def flip(data):
    return b"".join(data[i:i + 64][::-1] for i in range(0, len(data), 64))


def stream(data, seed):
    if not data:
        return b""
    once = aes("cfb", vector(seed), shuffle(data))
    return aes("cfb", vector(seed + 1), shuffle(flip(once)))


def block(data, seed):
    return aes("cbc", vector(seed), data)


def content(data):
    pieces = [data[i:i + BLOCK_SIZE] for i in range(0, len(data), BLOCK_SIZE)]
    return b"".join(block(p, i) if len(p) == BLOCK_SIZE else stream(p, i) for i, p in enumerate(pieces))


def mac16(data):
    folded = bytearray(8)
    for i, byte in enumerate(hmac.new(KEY, data, hashlib.sha1).digest()[:19]):
        folded[i % 8] ^= byte
    return (folded[0] ^ folded[2] ^ folded[4] ^ folded[6]) << 8 | (
        folded[1] ^ folded[3] ^ folded[5] ^ folded[7])


def name(plain):
    data = plain.encode()
    code = mac16(data)
    bits = code.to_bytes(2, "big") + stream(data, code)
    number, text = int.from_bytes(bits, "little"), ""
    for _ in range((len(bits) * 8 + 5) // 6):
        text += ALPHABET[number & 63]
        number >>= 6
    return text


def main():
    plain = bytes(i % 251 for i in range(5000))
    one, many = content(b"N"), content(plain)
    print("vector 0   ", vector(0).hex())
    print("vector 1   ", vector(1).hex())
    print("vector 2   ", vector(2).hex())
    print("file of 0  ", content(b"").hex() or "(nothing)")
    print("file of 1  ", one.hex())
    print("5000, first", many[:16].hex())
    print("5000, 4080 ", many[4080:4096].hex())
    print("5000, 4096 ", many[4096:4112].hex())
    print("5000, 4984 ", many[4984:].hex())
    print("5000 SHA-1 ", hashlib.sha1(many).hexdigest())
    print("mac16      ", mac16(b"Reports").to_bytes(2, "big").hex())
    print("name       ", name("Reports"))


if __name__ == "__main__":
    main()
