#!/usr/bin/env python3
"""Writes a made-up Claude Code configuration directory, and what a scan of it has to find.

    corpus.py DIR [--bytes 512M] [--files N] [--days 7] [--now INSTANT] [--seed 1]

DIR/projects holds the transcripts, DIR/manifest.json the expected result. Equal arguments give equal bytes. Sessions
begin within the last `--days` before `--now`; a scan is comparable if it takes the manifest's "now" as its clock and
looks back 7 days.

As in real transcripts, nearly all bytes belong to other lines than replies: attachments, tool results, request shapes.
Mixed in is whatever a scan may get wrong: copies of a reply from when it streamed, the same lines again in a resumed
session, quoted replies with and without escapes, decoy "usage" objects, lines cut short at the end of a file, replies
without ids, tokens, usage or a fraction in their time, replies on either side of the lookback's edge, and files that
are no transcripts.
"""
import argparse
import datetime
import json
import os
import random
import shutil
import time

DAY = 86_400_000  # milliseconds, like every time here
LOOKBACK = 7 * DAY
SUMS = ("input", "output", "cache_read", "cache_write_5m", "cache_write_1h")
MODELS = ("claude-opus-5-5", "claude-opus-5-5", "claude-opus-5-5", "claude-sonnet-5-2", "claude-sonnet-4-6-20260214",
          "claude-haiku-4-5-20251001", "us.anthropic.claude-Haiku-4-5-20251001-v1:0", "claude-fable-1")
DIRECTORIES = ("/home/dev/code/ledger", "/home/dev/src/pixel.garden", "/home/dev/code/map tiles", "/srv/build",
               "/home/dev")
KINDS = ("plain", "synthetic", "zero", "whole second", "no usage", "no ids", "no message id", "no request id")
WORDS = ("the of and to in for with on from as at is it that when then while after queue buffer socket frame "
         "cursor handler parser signal window thread commit branch index table column record field token stream "
         "header footer cache counter timer budget policy retry batch worker reader runner module export function "
         "method object value string number array vector iterator result error message level option session "
         "request response status path file folder kernel process memory stack event channel promise future return "
         "raise assert verify compare update delete merge filter render layout border harbour lantern meadow "
         "willow quartz ember river ridge orchard usage assistant type naïve café “quoted” → ✓ 日本語 übermäßig 🤖").split()


def stamp(ms):
    seconds = datetime.datetime.fromtimestamp(ms // 1000, datetime.timezone.utc)
    return seconds.strftime("%Y-%m-%dT%H:%M:%S") + ".%03dZ" % (ms % 1000)


def escaped(text):
    return json.dumps(text, ensure_ascii=False)[1:-1]


class Filler:
    """Escaped text, made once and then handed out in long runs."""

    def __init__(self, rng):
        self.rng = rng
        pieces = [escaped(self.piece()).encode() for _ in range(4000)]
        self.text = b"".join(pieces)
        self.starts, at = [], 0
        for piece in pieces:
            self.starts.append(at)
            at += len(piece)

    def piece(self):
        rng, words = self.rng, " ".join(self.rng.choices(WORDS, k=self.rng.randint(5, 60)))
        return rng.choice((
            words.capitalize() + ".\n\n", "- " + words + "\n", "> **Note:** " + words + "\n",
            '%6d\t    if (%s.%s("%s")) {\n' % (rng.randint(1, 900), *rng.choices(WORDS, k=3)),
            "\tconst %s = await %s(%s);  // %s\n" % (*rng.choices(WORDS, k=3), words),
            '{"ok":true,"type":"%s","items":[%d,%d]}\n' % (rng.choice(WORDS), rng.randint(0, 9), rng.randint(0, 99)),
            "C:\\dev\\%s\t%d\n" % (rng.choice(WORDS), rng.randint(0, 1 << 20)),
            '{"type":"assistant","usage":{"input_tokens":%d}}\n' % rng.randint(1, 99) if rng.random() < .1 else words))

    def __call__(self, length):
        """About `length` bytes."""
        out = []
        while length > 0:
            start = self.starts[self.rng.randrange(len(self.starts))]
            end = min(start + length, len(self.text) - 1)
            # Only at the start of a piece is a cut sure to split neither an escape nor a character.
            low, high = 0, len(self.starts)
            while low < high:
                middle = (low + high) // 2
                low, high = (middle + 1, high) if self.starts[middle] < end else (low, middle)
            run = self.text[start:self.starts[low] if low < len(self.starts) else len(self.text)]
            out.append(run)
            length -= max(1, len(run))
        return b"".join(out)


class Expected:
    """The replies that count, each once."""

    def __init__(self):
        self.best, self.loose = {}, []

    def add(self, key, at, model, tokens):
        reply = (at, model, tuple(tokens))
        if key is None:
            self.loose.append(reply)
        elif key not in self.best or sum(tokens) > sum(self.best[key][2]):
            self.best[key] = reply

    def summary(self, cutoff):
        total = dict.fromkeys(("events", *SUMS, "weight_x60"), 0)
        for at, model, tokens in [*self.best.values(), *self.loose]:
            if at >= cutoff:
                name = model.lower()
                family = 1 if "haiku" in name else 3 if "sonnet" in name else 5
                total["events"] += 1
                for field, count in zip(SUMS, tokens):
                    total[field] += count
                total["weight_x60"] += family * sum(p * n for p, n in zip((20, 100, 2, 25, 40), tokens))
        return total


class Corpus:
    def __init__(self, root, arguments):
        self.root, self.now, self.arguments = root, arguments.now, arguments
        self.cutoff = self.now - LOOKBACK
        self.rng = random.Random(arguments.seed)
        self.filler = Filler(random.Random(arguments.seed + 1))
        self.expected = Expected()
        self.earlier = []  # lines that a resumed session may repeat
        self.written = 0

    def name(self, prefix, length=22):
        return prefix + "".join(self.rng.choices("ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnpqrstuvwxyz123456789", k=length))

    def size(self, middle, spread, low, high):
        return int(min(high, max(low, self.rng.lognormvariate(0, spread) * middle)))

    def tail(self):
        return b'"userType":"external","cwd":"%s","sessionId":"%s","version":"2.1.330","gitBranch":"main"}' % (
            escaped(self.cwd).encode(), self.session.encode())

    def put(self, line):
        self.lines.append(line)
        self.length += len(line) + 1

    # Lines that are no replies.

    def attachment(self):
        body = self.filler(self.size(11_000, 1.2, 400, 75_000))
        self.put(b'{"parentUuid":null,"attachment":{"type":"file","content":"%s"},"type":"attachment","timestamp":"%s",'
                 b'"rendered":[{"content":"%s"}],%s' % (body, stamp(self.clock).encode(), body, self.tail()))

    def shape(self):
        schema = b'{"type":"object","properties":{"a":{"type":"string"}}}'
        tools = b",".join(b'{"name":"%s","description":"%s","input_schema":%s}'
                          % (self.name("Tool", 6).encode(), self.filler(3000), schema)
                          for _ in range(self.size(26, .25, 10, 40)))
        self.put(b'{"type":"api-request-shape","sessionId":"%s","timestamp":"%s","shape":{"tools":[%s]}}'
                 % (self.session.encode(), stamp(self.clock).encode(), tools))

    def result(self):
        chance, content = self.rng.random(), b'"%s"' % self.filler(self.size(9000, 1.2, 100, 150_000))
        extra = b'{"stdout":"","interrupted":false}'
        if chance < .03:    # an image
            content = b'[{"type":"image","data":"%s"}]' % self.name("", 60_000).encode() * self.rng.randint(1, 8)
            content = content.replace(b"][", b",")
        elif chance < .06:  # a transcript that was read as a file
            content = b'"%s"' % escaped(self.reply(quoted=True).decode()).encode()
        elif chance < .08:  # the same, kept as an object
            extra = b'{"entry":%s,"usage":{"input_tokens":77}}' % self.reply(quoted=True)
        self.put(b'{"type":"user","message":{"role":"user","content":[{"type":"tool_result","content":%s}]},'
                 b'"timestamp":"%s","toolUseResult":%s,%s' % (content, stamp(self.clock).encode(), extra, self.tail()))

    # Replies.

    def usage(self, tokens, style):
        fresh, output, read, short, hour = tokens
        both = '{"ephemeral_1h_input_tokens":%d,"ephemeral_5m_input_tokens":%d}' % (hour, short)
        half = '{"ephemeral_%s_input_tokens":%d}' % (("1h", hour) if hour else ("5m", short))
        split = {"both": both, "half": half, "empty": "{}", "null": "null"}.get(style)
        counts = ('"input_tokens":%d,"cache_creation_input_tokens":%d,"cache_read_input_tokens":%d,"output_tokens":%d'
                  % (fresh, short + hour, read, output)) + (',"cache_creation":' + split if split else "")
        again = "{%s}" % counts if self.rng.random() < .5 else ""
        return '{%s,"service_tier":"standard","iterations":[%s]}' % (counts, again)

    def reply(self, message="", request="", at=None, model="claude-opus-5-5", usage=None, time=None, quoted=False):
        if quoted:  # one that only stands inside another line
            message, request, usage = self.name("msg_01"), self.name("req_01"), self.usage([9, 9, 9, 9, 0], "both")
        chance, decoy = self.rng.random(), ""
        if chance < .02:
            decoy = ',"usage":{"input_tokens":999999},"type":"user"'
        elif chance < .03:
            decoy = ',"type":"assistant","timestamp":"2020-01-01T00:00:00.000Z","id":"msg_inner"'
        content = b'{"type":"tool_use","input":{"content":"%s"%s}}' % (
            self.filler(self.size(900, .9, 40, 40_000 if chance > .995 else 6000)), decoy.encode())
        identity = b'"id":"%s",' % message.encode() if message else b""
        members = [b'"message":{%s"role":"assistant","model":"%s","content":[%s],"usage":%s}'
                   % (identity, model.encode(), content, (usage or "null").encode()),
                   b'"type":"assistant"', b'"timestamp":"%s"' % (time or stamp(at or self.clock)).encode()]
        if request:
            members.append(b'"requestId":"%s"' % request.encode())
        self.rng.shuffle(members)
        return b'{"isSidechain":false,"uuid":"%s",%s,%s' % (self.name("", 36).encode(), b",".join(members), self.tail())

    def counts(self):
        rng, written = self.rng, self.size(1800, 1.2, 0, 60_000)
        one_hour = rng.random() < .55
        return [rng.randint(1, 12), self.size(350, 1.1, 2, 24_000), rng.randint(0, 200_000),
                0 if one_hour else written, written if one_hour else 0]

    def group(self, kind=None):
        """One reply in one to three lines."""
        rng, tokens = self.rng, self.counts()
        kind = kind or rng.choices(KINDS, (94, 1, 1, 1, 1, .6, .6, 1))[0]
        style = rng.choices(("both", "half", "empty", "null", "absent"), (84, 5, 3, 3, 5))[0]
        if style not in ("both", "half"):
            tokens[3:] = [tokens[3] + tokens[4], 0]  # without a split they are five-minute writes
        message = "" if kind in ("no ids", "no message id") else self.name("msg_01")
        request = "" if kind in ("no ids", "no request id") else self.name("req_01")
        model = "<synthetic>" if kind == "synthetic" else rng.choice(MODELS)
        if self.cutoff - 60_000 < self.clock < self.cutoff:
            self.clock = self.cutoff  # copies of a reply stay on one side of the edge
        whole = stamp(self.clock)[:19] + "Z" if kind == "whole second" else None
        copies = rng.choice((1, 1, 2, 3))
        outputs = sorted(rng.randint(1, tokens[1]) for _ in range(copies - 1)) + [tokens[1]]
        key = ":".join(i for i in (message, request) if i) or None
        for output in outputs:
            tokens[1] = output
            counted = [0] * 5 if kind == "zero" else tokens
            usage = None if kind == "no usage" else self.usage(counted, style)
            line = self.reply(message, request, self.clock, model, usage, whole)
            self.put(line)
            if kind in ("plain", "no ids", "no message id", "no request id"):
                self.expected.add(key, self.clock, model, tokens)
                if key and rng.random() < .2:
                    self.earlier.append((line, key, self.clock, model, list(tokens)))
            self.clock = min(self.clock + rng.randint(1, 4000), self.now)

    def begin(self, start):
        self.cwd, self.session, self.clock = self.rng.choice(DIRECTORIES), self.name("", 36), start
        self.lines, self.length = [], 0

    def transcript(self, budget):
        rng = self.rng
        if self.earlier and rng.random() < .05:
            for line, *reply in rng.sample(self.earlier, min(len(self.earlier), 12)):
                self.put(line)
                self.expected.add(*reply)
        if budget > 150_000:
            self.shape()
        while self.length < budget:
            self.put(b'{"type":"user","message":{"role":"user","content":"%s"},"timestamp":"%s",%s' % (
                self.filler(self.size(400, 1.1, 20, 20_000)), stamp(self.clock).encode(), self.tail()))
            for _ in range(rng.randint(1, 6)):
                self.clock = min(self.clock + rng.randint(800, 60_000), self.now)
                self.group()
                for line, chance in ((self.result, .9), (self.result, .3), (self.attachment, .7), (self.shape, .15)):
                    if rng.random() < chance and self.length < budget:
                        line()

    def close(self, path, cut=False):
        data = b"\n".join(self.lines) + b"\n"
        if cut:
            line = self.reply(quoted=True)
            data += line[:self.rng.randint(1, len(line))]  # perhaps whole, but without its line feed
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        os.utime(path, ns=(self.clock * 1_000_000, self.clock * 1_000_000))
        self.written += len(data)

    def folder(self):
        return os.path.join("projects", "".join(c if c.isalnum() else "-" for c in self.cwd))

    def edges(self):
        """Every kind of reply once, and replies around the edge of the lookback."""
        self.begin(self.now - DAY)
        for kind in KINDS:
            self.group(kind)
        for distance in (-DAY, -1, 0, 1):
            message, tokens = self.name("msg_01"), self.counts()
            self.put(self.reply(message, "", self.cutoff + distance, MODELS[0], self.usage(tokens, "both")))
            self.expected.add(message, self.cutoff + distance, MODELS[0], tokens)
        self.close(os.path.join(self.folder(), "edges.jsonl"), cut=True)
        self.begin(self.now - DAY)
        self.put(self.reply(quoted=True))
        for stranger in ("projects/.hidden/a.jsonl", "projects/.hidden.jsonl", "projects/a.jsonl.bak", "history.jsonl"):
            self.close(stranger)

    def build(self):
        arguments, rng = self.arguments, self.rng
        self.edges()
        shares = [rng.lognormvariate(0, 1.1) for _ in range(arguments.files)]
        left = sum(shares)
        for share in shares:
            budget = max(3000, int((arguments.bytes - self.written) * share / left))
            left -= share
            self.begin(self.now - int(rng.random() * arguments.days * DAY))
            agent = rng.random() < .3
            self.transcript(budget)
            self.close(os.path.join(self.folder(), self.session, "subagents", "agent-1.jsonl") if agent
                       else os.path.join(self.folder(), self.session + ".jsonl"), cut=rng.random() < .05)
        return {"now": stamp(self.now), "bytes": self.written, "expected": self.expected.summary(self.cutoff)}


def size(text):
    unit = {"K": 1 << 10, "M": 1 << 20, "G": 1 << 30}.get(text[-1:].upper())
    return int(float(text[:-1]) * unit) if unit else int(text)


def instant(text):
    return round(datetime.datetime.fromisoformat(text.replace("Z", "+00:00")).timestamp() * 1000)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("dir")
    parser.add_argument("--bytes", type=size, default=size("512M"))
    parser.add_argument("--files", type=int, help="default: one for each 1.3 MB")
    parser.add_argument("--days", type=float, default=7)
    parser.add_argument("--now", type=instant, default=round(time.time() * 1000))
    parser.add_argument("--seed", type=int, default=1)
    arguments = parser.parse_args()
    arguments.files = max(1, arguments.files or arguments.bytes // 1_300_000)
    manifest = os.path.join(arguments.dir, "manifest.json")
    if os.path.isdir(arguments.dir) and os.listdir(arguments.dir):
        if not os.path.exists(manifest):
            parser.error("%s is not empty and was not made by this program" % arguments.dir)
        shutil.rmtree(arguments.dir)
    result = Corpus(arguments.dir, arguments).build()
    with open(manifest, "w") as file:
        json.dump(result, file, indent=1)


if __name__ == "__main__":
    main()
