#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into tests/fuzz/corpus/.

Patterns come from the compiler's golden dumps and fault table (the patterns
the test suite already knows), subjects from a short list of texts that
exercise ASCII, UTF-8, newlines and repetition. Each seed starts with the
header bytes its target reads (see the target's comment), then the strings
separated by 0xFF. Run it again after adding patterns; it replaces the files.
"""
import hashlib
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
SEP = b"\xff"

SUBJECTS = [
    b"", b"a", b"abc", b"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", b"bab", b"xaXy", b"a\nb\nab\n",
    b"foo bar  baz\tqux", b"12345 abc-def_ghi", "caf\u00e9 \u20ac \U00010348 \u0e01\u0e34".encode(),
    b"\xc0\x80\xff\xe2\x82A\xf0\x90\x80", b"abababababcabab", b"The quick brown fox jumps over",
    b"((((a))))[x]{2}", b"\x00a\x00b",
]
TEMPLATES = [b"", b"x", b"$&", b"<$1>", b"$2$1", b"a\\$1b", b"$12", b"\\\\", b"[$&|$1]"]


def patterns():
    out = []
    with open(os.path.join(ROOT, "tests/compile/golden.txt"), "rb") as f:
        for line in f:
            if line.startswith(b"> "):
                pat, _, opts = line[2:].rstrip(b"\n").partition(b"\t")
                out.append((pat, opts))
    with open(os.path.join(ROOT, "tests/compile/faults.txt"), "rb") as f:
        for line in f:
            if line[:1] not in (b"#", b"\n") and b"\t" in line:
                out.append((line.rstrip(b"\n").split(b"\t", 1)[1], b""))
    return [(p.replace(b"\x00", b"").replace(b"\xff", b""), o) for p, o in out]


def optbits(opts):
    return sum(1 << "gimsx".index(c) for c in opts.decode() if c in "gimsx")


def write(target, seeds):
    d = os.path.join(HERE, "corpus", target)
    os.makedirs(d, exist_ok=True)
    for name in os.listdir(d):
        os.remove(os.path.join(d, name))
    for s in seeds:
        with open(os.path.join(d, hashlib.sha1(s).hexdigest()[:16]), "wb") as f:
            f.write(s)
    print(f"{target}: {len(seeds)} seeds")


def main():
    pats = patterns()
    find, diff, repl, multi = [], [], [], []
    for i, (pat, opts) in enumerate(pats):
        subj = SUBJECTS[i % len(SUBJECTS)]
        bits = optbits(opts) | (1 if i % 3 == 0 else 0)      # g now and then
        # find: options, control, limit kind 240 (the default), capacity 8
        find.append(bytes([bits, 0x02, 240, 10]) + pat + SEP + subj)
        # differential: options, control (stretch on every fourth), small limit
        ctrl = 0x0E if i % 4 == 0 else 0x02
        diff.append(bytes([bits, ctrl, 10, 30, 12]) + pat + SEP + subj)
        # replace: options, limit kind, find capacity, output capacity (2 bytes)
        tmpl = TEMPLATES[i % len(TEMPLATES)]
        repl.append(bytes([bits, 240, 13, 0, 80 + i % 40]) + pat + SEP + tmpl + SEP + subj)
    for i in range(0, len(pats) - 3, 4):
        ops = bytes([1, 2, 3, 4, 0x82, 0xC1, 5, 0xC2, 6])
        group = SEP.join(p for p, _ in pats[i:i + 4])
        multi.append(bytes([5 + i % 7]) + ops + SEP + group + SEP + SUBJECTS[i % len(SUBJECTS)] + b"\x05" * 12)
    utf = []
    for i, s in enumerate(SUBJECTS):
        utf.append(bytes([i & 1, 3 + i, 2 + i]) + s)
    utf.append(bytes([1, 2, 1]) + "\ud800\udc00".encode("utf-16-le", "surrogatepass") + b"\x00\xd8A\x00\x00\xdc")
    strings = []
    for op in range(6):
        for width in (0, 1):
            for j, s in enumerate(SUBJECTS[:8]):
                needle = SUBJECTS[(j + 3) % len(SUBJECTS)][:3]
                strings.append(bytes([width, op, j & 3, 0x80 | j, ord("a"), 0x12, 0x34, 0x56]) + s + SEP + needle)
    write("find", find)
    write("differential", diff)
    write("replace", repl)
    write("utf", utf)
    write("strings", strings)
    write("multi", multi)


if __name__ == "__main__":
    sys.exit(main())
