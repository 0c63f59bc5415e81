"""A user with Claude Code and Vorn, all in one temporary directory, and what has to be true of their files whatever
happens. For the scripts in tests/faults and tests/privacy; GoogleTest has its own means."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

NOBODY = 65534
COMMAND = "cat >/dev/null; echo mine"
SETTINGS = {"env": {"A": "1"}, "statusLine": {"type": "command", "command": COMMAND, "padding": 0}, "z": [1.0, None]}
NOW = int(time.time())
SESSION_RESET, WEEK_RESET = NOW + 7200, NOW + 259200
INPUT = json.dumps({"session_id": "s", "version": "2", "rate_limits": {
    "five_hour": {"used_percentage": 41.5, "resets_at": SESSION_RESET},
    "seven_day": {"used_percentage": 52, "resets_at": WEEK_RESET}}})
PLANNED = "6F9619FF-8B86-D011-B42D-00CF4FC964FF"


def need(*programs):
    """Ends the script, as skipped, where one of these is missing or of no use."""
    for program in programs:
        if not shutil.which(program):
            print(f"skipped: {program} is not installed")
            sys.exit(77)
    # Some containers forbid it.
    if "strace" in programs and subprocess.run(["strace", "-qq", "-o", "/dev/null", "true"], check=False).returncode:
        print("skipped: strace may not trace here")
        sys.exit(77)


def stamp(seconds, form="%Y-%m-%dT%H:%M:%SZ"):
    return time.strftime(form, time.gmtime(seconds))


def answer(extra=""):
    session, week = (stamp(at, "%b %d at %I:%M%p (UTC)") for at in (SESSION_RESET, WEEK_RESET))
    return json.dumps({"is_error": False, "result": f"""Current session: 40% used · resets {session}
Current week (all models): 50% used · resets {week}
{extra}
Last 24h · 20 requests · 2 sessions
  50% of your usage was at >150k context
Top skills: /review 30%
"""})


def summary(rounds, problems):
    lost = sum("lost" in problem for problem in problems)
    broken = sum("broken" in problem or "torn" in problem for problem in problems)
    return f"{rounds} rounds, {lost} lost records, {broken} broken files, {len(problems)} problems"


class World:
    """`unprivileged`: whatever runs in it runs as nobody, where we are root, whom no mode keeps out."""

    def __init__(self, binaries, unprivileged=False, inside=None):
        self.binaries = pathlib.Path(binaries).resolve()
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="vorn-world-", dir=inside))
        self.root.chmod(0o755)
        self.home, self.vorn, self.claude = self.root / "home", self.root / "home/data/Vorn", self.root / "home/claude"
        self.turn = INPUT
        self.drop = []
        if unprivileged and os.geteuid() == 0:
            self.drop = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
            # Ours may lie where nobody may look, as in root's home.
            shutil.copytree(self.binaries, self.root / "bin")
            self.binaries = self.root / "bin"
        of_home = [self.home / name for name in ("bin", "run", "config")]
        for folder in (self.vorn, self.claude / "projects/-srv", *of_home):
            folder.mkdir(parents=True)
        self.vorn.chmod(0o700)
        (self.home / "run").chmod(0o700)
        self.settings = self.claude / "settings.json"
        self.settings.write_text(json.dumps(SETTINGS))
        self.write_client(f"cat {self.home / 'answer'}")
        (self.home / "answer").write_text(answer())
        reply = {"type": "assistant", "timestamp": stamp(NOW - 600), "cwd": "/srv", "requestId": "r", "message": {
            "id": "m", "model": "claude-opus-5-5", "usage": {"input_tokens": 5, "output_tokens": 400}}}
        (self.claude / "projects/-srv/a.jsonl").write_text(json.dumps(reply) + "\n")
        folders = {"HOME": self.home, "VORN_HOME": self.vorn, "CLAUDE_CONFIG_DIR": self.claude, "TMPDIR": self.root,
                   "XDG_RUNTIME_DIR": self.home / "run", "XDG_CONFIG_HOME": self.home / "config",
                   "XDG_DATA_HOME": self.home / "data"}
        self.environment = {**{name: str(folder) for name, folder in folders.items()}, "TZ": "UTC", "LC_ALL": "C.UTF-8",
                            "PATH": f"{self.home / 'bin'}:/usr/bin:/bin", "QT_QPA_PLATFORM": "offscreen"}
        self.give_away()

    def give_away(self):
        if self.drop:
            for path in (self.root, *self.root.rglob("*")):
                os.chown(path, NOBODY, NOBODY, follow_symlinks=False)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.root, ignore_errors=True)

    def write_client(self, script):
        (self.home / "bin/claude").write_text(f"#!/bin/sh\n{script}\n")
        (self.home / "bin/claude").chmod(0o755)

    # What people do. Each is (arguments, standard input).
    @property
    def jobs(self):
        ctl = [str(self.binaries / "vornctl")]
        return {
            "connect": ([*ctl, "connect"], ""),
            "connect again": ([*ctl, "connect"], ""),
            "status line": (["sh", "-c", self.command()], self.turn),
            "status": ([*ctl, "status", "--probe", "--format", "plain"], ""),
            "prune": ([*ctl, "status", "--probe", "--format", "plain"], ""),  # after `age`
            "plan add": ([*ctl, "plan", "add", stamp(NOW + 36000), "--note", "n"], ""),
            "plan redeem": ([*ctl, "plan", "redeem"], ""),
            "activity": ([*ctl, "activity"], ""),
            "export": ([*ctl, "export", "history", "--output", str(self.home / "exported")], ""),
            "disconnect": ([*ctl, "disconnect"], ""),
        }

    def command(self):
        """What Claude Code runs for the status line."""
        return json.loads(self.settings.read_text())["statusLine"]["command"]

    def run(self, job, before=(), timeout=20):
        arguments, text = self.jobs[job] if isinstance(job, str) else job
        if job == "status line" and before:
            arguments = ["/bin/sh", "-c", "exec " + arguments[-1]]  # what comes before is meant for the relay itself
        return subprocess.run([*self.drop, *before, *arguments], input=text, text=True, env=self.environment, cwd="/",
                              capture_output=True, timeout=timeout, check=False, errors="replace")

    def prepare(self):
        """Everything has been done once, and there is something to lose."""
        for job in ("connect", "status line", "status"):
            done = self.run(job)
            assert done.returncode == 0, (job, done)
        reset = {"id": PLANNED, "date": stamp(NOW + 7200), "scope": "session", "note": "keep"}
        (self.vorn / "reset-plan.json").write_text(json.dumps({"planned": [reset], "banked": 2}))
        self.give_away()
        return self

    def age(self):
        """So that the history is due for being written anew."""
        path = self.vorn / "history.jsonl"
        path.write_text(f'{{"k":"session","u":1,"t":{NOW - 10 * 86400}}}\n' + path.read_text())

    def samples(self):
        """The lines of the history but for that one."""
        path = self.vorn / "history.jsonl"
        lines = path.read_text(errors="replace").splitlines() if path.exists() else []
        return [line for line in lines if '"u":1,' not in line]

    def problems(self, before=(), may_leave=False, keeps_plan=True):
        """What is broken. `before`: lines that the history had; `may_leave`: killed programs cannot tidy up;
        `keeps_plan`: nobody had a reason to drop what was planned."""
        found, lines = [], self.samples()
        found += [f"history lost {line}" for line in before if line not in lines]
        for line in lines:
            try:
                json.loads(line)
            except ValueError:
                found.append(f"torn line in the history: {line!r}")
        for path in [*self.vorn.glob("*.json"), self.settings]:
            try:
                json.loads(path.read_text())
            except ValueError:
                found.append(f"broken: {path.name}: {path.read_bytes()[:80]!r}")
        plan = self.vorn / "reset-plan.json"
        if keeps_plan and plan.exists() and PLANNED not in plan.read_text().upper():
            found.append("the planned reset is gone")
        if not may_leave:
            found += [f"left over: {path.name}"
                      for place in (self.vorn, self.claude) for path in place.rglob("*.vorn-new-*")]
        return found + self.problems_of_status_line()

    def problems_of_status_line(self):
        """The user's command runs, and what they had can be had back."""
        settings, record = json.loads(self.settings.read_text()), self.vorn / "integration.json"
        if settings != SETTINGS:
            rest = {**settings, "statusLine": SETTINGS["statusLine"]}
            if rest != SETTINGS or "vorn-bridge" not in settings["statusLine"]["command"]:
                return [f"settings: {settings}"]
            if json.loads(record.read_text()).get("originalStatusLine") != SETTINGS["statusLine"]:
                return ["the user's status line is in neither file"]
        done = self.run("status line")
        return [] if (done.returncode, done.stdout, done.stderr) == (0, "mine\n", "") else [f"status line: {done}"]
