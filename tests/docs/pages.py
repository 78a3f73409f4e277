#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the commands of the pages against the built programs, and holds what the pages show against what comes.

A page is one shell in a folder of its own. In a fenced `console` block, "$ " begins a command, and what follows up to
the next one is its output on both channels; a line "..." stands for any lines. A command succeeds, or the next one is
`echo $?`. One that ends in "&" goes on, and has its output within ten seconds. `sh` blocks are run, and show nothing.
Times, ports, profile names, the folder and the width of columns may differ.

Unseen by a reader, as comments:  <!-- run: COMMAND -->  and, above a block,  <!-- not run: REASON -->.

Of a manual page the examples are run, against a lab that is served; their outputs are not shown. Its comments are
.\\" run: COMMAND  and, above an example,  .\\" not run: REASON  or, for the content of a file,  .\\" file: NAME.
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

SECONDS = 120  # for the output of one command; then the page has failed
HOME = "/home/ada"  # what the pages have in place of the scratch folder
VARYING = [
    (r"\d{4}-\d\d-\d\d[T ]\d\d:\d\d(:\d\d(\.\d+Z)?)?", "TIME"),
    (r"B2VProfile_\d+", "PROFILE"),
    (r"(CreateTime|EndDate) \d+", r"\1 SECONDS"),
    (r"(?<=TIME )\d+ 51216", "PROCESS 51216"),
    (r"(zorb?d|kvnrd)( *= )\d+", r"\1\2PORT"),
    (r"[ \t]+", " "),
    (r" $", ""),
]
PIECE = re.compile(r"^<!-- (?P<kind>run|not run): (?P<what>.*?) -->$|^```(?P<language>\S*)\n(?P<body>.*?)^```$",
                   re.M | re.S)
# A command goes on behind a backslash or a bar, up to the end of a here-document, and up to that of a loop.
COMMAND = re.compile(r"(.*[\\|]\n)*(.*?<<'(?P<end>\w+)'(.*\n)*?(?P=end)\n|for .*; do\n(.*\n)*?  done\n|.*\n)")
EXAMPLE = re.compile(r'^\.\\" run: (?P<run>.*\n)|(?:^\.\\" (?P<kind>not run|file): (?P<what>.*)\n)?'
                     r"^\.(?:Bd -literal.*\n(?P<block>(?:.*\n)*?)\.Ed$|Dl (?P<line>.*\n))", re.M)
SITE = """zorlab init site >init.log; zorlab serve --job-seconds 0 site &
export KVN_CONF=$PWD/site/kvn.toml TO='-vmserver vcenter01.lab.example -vmproxy convhost01.lab.example'
"""


def plain(line, home):
    for pattern, name in [(re.escape(home), HOME), *VARYING]:
        line = re.sub(pattern, name, line)
    return line


def matches(shown, came):
    if not shown or shown[0] == "...":
        return not came if not shown else any(matches(shown[1:], came[n:]) for n in range(len(came) + 1))
    return bool(came) and shown[0] == came[0] and matches(shown[1:], came[1:])


def steps(text):
    """(line, command, shown output or None) for each command of a page."""
    skip = False
    for piece in PIECE.finditer(text):
        line = text.count("\n", 0, piece.start()) + 1
        if piece["kind"]:
            skip = piece["kind"] == "not run"
            if not skip:
                yield line, piece["what"], None
            continue
        if piece["language"] == "sh" and not skip:
            yield line, piece["body"], None
        elif piece["language"] == "console" and not skip:
            commands = re.split(r"^\$ ", piece["body"], flags=re.M)
            if commands[0]:
                raise SystemExit(f"line {line}: the block does not begin with a command")
            for each in commands[1:]:
                command = COMMAND.match(each)[0]
                yield line, command.rstrip("\n"), each[len(command):].splitlines()
        skip = False


def examples(text):
    """The same for a manual page."""
    bodies = [(0, SITE)]
    begin = text.index(".Sh EXAMPLES")
    for piece in EXAMPLE.finditer(text, begin, text.index("\n.Sh", begin)):
        body = (piece["run"] or piece["block"] or piece["line"]).replace("\\e", "\\")
        if piece["kind"] != "not run":
            bodies.append((text.count("\n", 0, piece.start()) + 1,
                           f"cat >{piece['what']} <<'END'\n{body}END\n" if piece["kind"] else body))
    for line, body in bodies:
        for command in (each[0].rstrip("\n") for each in COMMAND.finditer(body)):
            yield line, command, ["..."] if command.endswith("&") else None


class Shell:
    def __init__(self, folder, environment):
        self.process = subprocess.Popen(["bash"], cwd=folder, env=environment, text=True, bufsize=1,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        start_new_session=True)

    def line(self):
        timer = threading.Timer(SECONDS, lambda: os.killpg(self.process.pid, 9))
        timer.start()
        line = self.process.stdout.readline()
        timer.cancel()
        if not line:
            raise SystemExit("no answer in time, or the shell has ended")
        return line.rstrip("\n")

    def run(self, command, awaited):
        """The status, and the output; of a command in the background, as many lines as are awaited."""
        self.process.stdin.write(f"(exit $status)\n{command}\nstatus=$?; echo; echo \"=== $status\"\n")
        output = []
        while not (end := re.fullmatch(r"=== (\d+)", line := self.line())):
            output.append(line)
        output.pop() if output and not output[-1] else None
        while command.endswith("&") and len(output) < awaited:
            output.append(self.line())
        return int(end[1]), output

    def end(self):
        os.killpg(self.process.pid, 15)
        self.process.wait()


def run(page, environment):
    with tempfile.TemporaryDirectory(prefix="page-") as home:
        shell = Shell(home, environment | {"HOME": home})
        try:
            todo = list((steps if page.suffix == ".md" else examples)(page.read_text()))
            for n, (line, command, shown) in enumerate(todo):
                status, output = shell.run(command, len(shown or []))
                told = n + 1 < len(todo) and todo[n + 1][1] == "echo $?"
                came = [plain(each, home) for each in output]
                same = shown is None or matches([plain(each, HOME) for each in shown], came)
                if (status and not told) or not same:
                    heading = f"{page}:{line}: $ {command}\nstatus {status}, and this came:"
                    raise SystemExit("\n".join([heading, *output]))
            return len(todo)
        finally:
            shell.end()


def checkWords(page, source, programs):
    """Commands within sentences, and those that are not run: what they name must exist. So must what links lead to."""
    def said(*command):
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout

    text = page.read_text()
    spans = ["".join(found) for found in re.findall(r"`([^`\n]+)`|^```sh\n(.*?)^```", text, re.M | re.S)]
    for program, subcommand, rest in re.findall(r"^(zorlab|zorinfo) ([a-z]+)(.*)$", "\n".join(spans), re.M):
        told = said(f"{programs}/{program}", "--help"), said(f"{programs}/{program}", subcommand, "--help")
        unknown = [option for option in re.findall(r"(?<![\w-])--?[a-zA-Z-]+", rest) if option not in told[1]]
        if unknown or not re.search(rf"^ +{subcommand}\b", told[0], re.M):
            raise SystemExit(f"{page}: `{program} {subcommand}{rest}`: no such subcommand or option {unknown}")
    options = re.findall(r"^  (-\w+)", said(f"{programs}/zorb2v"), re.M)
    targets = said("cmake", "--build", f"{programs}/..", "--target", "help")
    presets = [each["name"] for each in json.loads((source / "CMakePresets.json").read_text())["configurePresets"]]
    tops = "|".join(each.name for each in source.iterdir() if each.name not in ("build", "lab"))
    for span in spans:
        of_zorb2v = span if re.match(r"zorb2v |-\w+$", span) else ""
        wrong = [option for option in re.findall(r"(?<![\w-])-\w+", of_zorb2v) if option not in options]
        wrong += [name for name in re.findall(r"(?:--preset|\./test) (\w+)", span) if name not in presets]
        wrong += [name for names in re.findall(r"--target ([\w ]+)", span) for name in names.split()
                  if not re.search(rf"\b{name}\b", targets)]
        wrong += [path for path in re.findall(rf"(?<!\S)(?:\./)?((?:{tops})/[\w./*-]+|(?<=\./)(?!build)\w+)", span)
                  if not [*source.glob(path), *source.glob(path + ".*")]]
        if wrong:
            raise SystemExit(f"{page}: `{span}`: there is no {wrong}")
    for link in re.findall(r"\]\(([^)#\s]+)[^)]*\)", text):
        if "://" not in link and not (page.parent / link).exists():
            raise SystemExit(f"{page}: the link {link} leads nowhere")
        for folder in (source / "src").iterdir() if link.endswith("layers.svg") else []:
            if f"src/{folder.name}" not in (page.parent / link).read_text():
                raise SystemExit(f"{page}: the picture {link} does not show src/{folder.name}")


def main():
    source, programs, *pages = sys.argv[1:]
    environment = {"PATH": f"{programs}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "TZ": "UTC", "SOURCE": source}
    for page in map(Path, pages):
        if page.suffix == ".md":
            checkWords(page, Path(source), programs)
        print(f"{page}: {run(page, environment)} commands")


if __name__ == "__main__":
    main()
