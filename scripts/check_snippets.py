#!/usr/bin/env python3
"""Checks that every C and C++ fragment of the named guides stands in an example, to the letter.

  scripts/check_snippets.py GUIDE.md...
"""
import pathlib
import re
import sys

EXAMPLES = [*pathlib.Path("examples").rglob("*.c"), *pathlib.Path("examples").rglob("*.cpp")]
FRAGMENT = re.compile(r"^```c(?:pp)?\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def main() -> int:
    sources = [path.read_text() for path in EXAMPLES]
    checked, strangers = 0, []
    for guide in sys.argv[1:]:
        for fragment in FRAGMENT.findall(pathlib.Path(guide).read_text()):
            checked += 1
            if not any(fragment in source for source in sources):
                strangers.append(f"{guide}: no example contains\n{fragment}")
    print("\n".join(strangers))
    print(f"{checked} fragments, {len(strangers)} of them in no example")
    return 1 if strangers or not checked else 0


if __name__ == "__main__":
    sys.exit(main())
