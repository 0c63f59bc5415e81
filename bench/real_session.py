"""The built application in a session of its own, as a busy user has it, for benchmarks that watch it from outside."""
import contextlib
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


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


CLIENT = """#!/bin/sh
exec python3 - <<'END'
import json, time
def at(seconds): return time.strftime("%b %d at %I:%M%p (UTC)", time.gmtime(time.time() + seconds))
text = f"Current session: 40% used · resets {at(7200)}\\nCurrent week (all models): 50% used · resets {at(259200)}"
print(json.dumps({"result": text, "is_error": False}))
END
"""


def make_busy(scratch, transcripts, samples):
    """Fills the directory with what a busy user has; returns the variables, as `env` takes them, that lead there."""
    config = scratch / "claude"
    subprocess.run([sys.executable, ROOT / "bench/corpus.py", config, "--bytes", transcripts, "--now",
                    time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())], check=True, stdout=subprocess.DEVNULL)
    write_history(scratch / "home", samples)
    client = scratch / "bin/claude"
    client.parent.mkdir()
    client.write_text(CLIENT)
    client.chmod(0o755)
    return [f"CLAUDE_CONFIG_DIR={config}", f"VORN_HOME={scratch / 'home'}",
            f"PATH={scratch / 'bin'}:{os.environ['PATH']}"]


def memory(pid):
    """Resident, and of it what belongs to no file, in MB."""
    status = pathlib.Path(f"/proc/{pid}/status").read_text()
    return {name: int(re.search(rf"{name}:\s+(\d+)", status).group(1)) / 1024 for name in ("VmRSS", "RssAnon")}


def wait_for(what, condition, seconds=30):
    deadline = time.time() + seconds
    while not (found := condition()):
        if time.time() > deadline:
            sys.exit(f"{pathlib.Path(sys.argv[0]).name}: not seen: {what}")
        time.sleep(0.05)
    return found


def processes_named(name, session):
    found = subprocess.run(["pgrep", "-x", "-s", str(session), name], capture_output=True, text=True, check=False)
    return [int(line) for line in found.stdout.split()]


@contextlib.contextmanager
def running_vorn(vorn, transcripts, samples, **popen):
    """Starts X server, bus, panel and `vorn` with `transcripts` bytes to scan and `samples` in its history; gives the
    session's process, whose id is the session's. All of it is gone afterwards."""
    with tempfile.TemporaryDirectory(prefix="vorn-bench-") as scratch:
        places = make_busy(pathlib.Path(scratch), transcripts, samples)
        session = subprocess.Popen([ROOT / "tests/desktop/with-desktop", "env", *places, vorn],
                                   start_new_session=True, **popen)
        try:
            wait_for("vorn", lambda: processes_named("vorn", session.pid))
            yield session
        finally:
            os.killpg(session.pid, signal.SIGTERM)
            session.wait()
