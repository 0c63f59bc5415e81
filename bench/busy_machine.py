"""The machine of a busy user, for the benchmarks of the application: transcripts, a full history, a client."""
import json
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
CLIENT = """#!/bin/sh
exec python3 - <<'END'
import json, time
def at(seconds): return time.strftime("%b %d at %I:%M%p (UTC)", time.gmtime(time.time() + seconds))
text = f"Current session: 40% used · resets {at(7200)}\\nCurrent week (all models): 50% used · resets {at(259200)}"
print(json.dumps({"result": text, "is_error": False}))
END
"""


def write_history(home, samples):
    """Eight days of readings that end now."""
    home.mkdir(parents=True)
    now = time.time()
    with (home / "history.jsonl").open("w") as history:
        for index in range(samples):
            observed = now - 60 - (samples - 1 - index) * 8 * 86400 / samples
            kind, length = (("session", 18000), ("week", 604800))[index % 2]
            left = (now + length / 3 - observed) % length
            line = {"k": kind, "u": round(80 * (1 - left / length), 1), "r": round(observed + left), "t": observed}
            history.write(json.dumps(line, separators=(",", ":")) + "\n")


def make_busy(scratch, size, samples):
    """Fills the directory; returns the variables, as `env` takes them, that make a program use it."""
    config = scratch / "claude"
    subprocess.run([sys.executable, ROOT / "bench/corpus.py", config, "--bytes", size, "--now",
                    time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())], check=True, stdout=subprocess.DEVNULL)
    write_history(scratch / "home", samples)
    client = scratch / "bin/claude"
    client.parent.mkdir()
    client.write_text(CLIENT)
    client.chmod(0o755)
    return [f"CLAUDE_CONFIG_DIR={config}", f"VORN_HOME={scratch / 'home'}",
            f"PATH={scratch / 'bin'}:{os.environ['PATH']}"]
