# SPDX-License-Identifier: Apache-2.0
"""Writes decoys.tsv: reversed and shuffled peptides, written a second time from the description in DecoyMaker.h and
DecoyMaker.cpp with Python's integers.

    python decoys.py > decoys.tsv
"""

import random

MASK = (1 << 64) - 1


class SplitMix64:
    """Steele, Lea and Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014."""

    def __init__(self, seed):
        self.state = seed & MASK

    def next(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK
        return z ^ (z >> 31)

    def below(self, limit):
        highest = (1 << 64) // limit * limit
        while True:
            draw = self.next()
            if draw < highest:
                return draw % limit


def fnv1a(text):
    """http://www.isthe.com/chongo/tech/comp/fnv/"""
    value = 14695981039346656037
    for byte in text.encode():
        value = ((value ^ byte) * 1099511628211) & MASK
    return value


def shuffled(seed, attempt, target, letters):
    of_attempt = SplitMix64(SplitMix64(seed).next() + attempt).next()
    generator = SplitMix64(of_attempt ^ fnv1a(target))
    letters = list(letters)
    for i in reversed(range(1, len(letters))):
        j = generator.below(i + 1)
        letters[i], letters[j] = letters[j], letters[i]
    return "".join(letters)


def main():
    generator = random.Random(7)
    print("kind", "fixed", "seed", "attempt", "target", "decoy", sep="\t")
    for i in range(60):
        target = "".join(generator.choice("ACDEFGHIKLMNPQRSTVWY") for _ in range(generator.randint(2, 40)))
        fixed = ("first", "last")[i % 2]
        head, movable, tail = (target[:1], target[1:], "") if fixed == "first" else ("", target[:-1], target[-1:])
        print("reversed", fixed, 0, 0, target, head + movable[::-1] + tail, sep="\t")
        seed = generator.choice([0, 1, 42, MASK])
        attempt = generator.randint(0, 9)
        print("shuffled", fixed, seed, attempt, target, head + shuffled(seed, attempt, target, movable) + tail, sep="\t")


main()
