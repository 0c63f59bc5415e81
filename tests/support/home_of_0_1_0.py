#!/usr/bin/env python3
"""Makes a copy of the home that version 0.1.0 left, with its times moved to now: home_of_0_1_0.py TARGET [NOW]

TARGET gets vorn/ (for VORN_HOME), claude/ (for CLAUDE_CONFIG_DIR) and config/ (for XDG_CONFIG_HOME). NOW is in seconds
since 1970; the fixture was left at FIXTURE_NOW, and what it says is moved by as much. Prints NOW."""
import datetime
import pathlib
import re
import sys
import time

FIXTURE = pathlib.Path(__file__).resolve().parent.parent / "data" / "home-0.1.0"
FIXTURE_NOW = 1795348800  # 2026-11-22T12:00:00Z
OLD_HOME = "/home/ana/.local/share/Vorn"
SECONDS = re.compile(r"\b179\d{7}\b")
DATE = re.compile(r"\b\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")
DATE_FORM = "%Y-%m-%dT%H:%M:%SZ"


def moved(text, by, home):
    """The text with every time later by that many whole seconds, so that fractions stay, and with the new home."""
    text = SECONDS.sub(lambda found: str(int(found[0]) + by), text)
    return DATE.sub(lambda found: (datetime.datetime.strptime(found[0], DATE_FORM)
                                   + datetime.timedelta(seconds=by)).strftime(DATE_FORM), text).replace(OLD_HOME, home)


def main():
    target = pathlib.Path(sys.argv[1])
    now = int(sys.argv[2]) if len(sys.argv) > 2 else int(time.time())
    for source in FIXTURE.rglob("*"):
        copy = target / source.relative_to(FIXTURE)
        if source.is_dir():
            copy.mkdir(mode=0o700, parents=True, exist_ok=True)
            continue
        copy.parent.mkdir(mode=0o700, parents=True, exist_ok=True)
        copy.write_text(moved(source.read_text(), now - FIXTURE_NOW, str(target / "vorn")))
        copy.chmod(0o600)
    print(now)


main()
