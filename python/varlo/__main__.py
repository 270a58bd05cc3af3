"""`python3 -m varlo TOOL ...`: the tools from a checkout."""

import importlib
import sys

TOOLS = ("check", "render", "watch", "film")


def main() -> int:
    if len(sys.argv) < 2 or sys.argv[1] not in TOOLS:
        print(f"usage: python3 -m varlo {{{','.join(TOOLS)}}} [ARGUMENT ...]", file=sys.stderr)
        return 2
    return int(importlib.import_module(f"varlo.{sys.argv[1]}").main(sys.argv[2:]))


if __name__ == "__main__":
    sys.exit(main())
