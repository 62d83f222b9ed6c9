#!/usr/bin/python3
"""Runs clang-tidy over the program's sources: portable files as the host build compiles them, the others
as the Windows build does; with --tests also over the tests. A file is checked again only when it, a header
that it includes, or the rules have changed; files that passed are recorded in build/tidy."""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
STORE = ROOT / "build" / "tidy"
MINGW = "i686-w64-mingw32"


def compile_commands(build):
    """{source: command} of our own files, of a configured build folder."""
    text = subprocess.run(["ninja", "-C", build, "-t", "compdb"], capture_output=True, text=True, check=True).stdout
    skipped = ("build",) if "--tests" in sys.argv else ("build", "tests")
    commands = {}
    for entry in json.loads(text):
        source = Path(entry["directory"], entry["file"]).resolve()
        ours = source.is_relative_to(ROOT) and source.relative_to(ROOT).parts[0] not in skipped
        if ours and source.suffix == ".cpp" and " -c " in entry["command"]:
            commands[source] = entry
    return commands


def dependencies(build):
    """{source: files it was last compiled from}, as ninja remembers them."""
    text = subprocess.run(["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True).stdout
    found = {}
    for block in re.split(r"\n\n+", text):
        files = [Path(build, line.strip()).resolve() for line in block.splitlines()[1:]]
        if files:
            found[files[0]] = [f for f in files if f.is_relative_to(ROOT)]
    return found


def for_clang(entry):
    """A command of the mingw compiler as clang understands it."""
    words = shlex.split(entry["command"])
    while Path(words[0]).name in ("ccache", "sccache"):
        words.pop(0)
    include = subprocess.run([words[0], "-print-file-name=include"], capture_output=True, text=True).stdout.strip()
    library = Path(include).parent / "include" / "c++"
    paths = [library, library / MINGW, library / "backward", Path("/usr") / MINGW / "include"]
    extra = [f"--target={MINGW}", "-nostdinc++", *(w for p in paths for w in ("-isystem", str(p)))]
    return shlex.join(["clang++", *extra, *words[1:]])


def fingerprint(command, files):
    digest = hashlib.sha256(command.encode())
    for file in sorted({ROOT / ".clang-tidy", Path(__file__), *files}):
        digest.update(file.read_bytes() if file.is_file() else b"")
    return digest.hexdigest()


def main():
    tasks = []
    seen = set()
    for name in ("host", "win32"):
        build = ROOT / "build" / name
        if not (build / "build.ninja").exists():
            print(f"tools/tidy.py: {build} is not configured", file=sys.stderr)
            return 1
        commands = {s: e for s, e in compile_commands(build).items() if s not in seen}
        seen |= set(commands)
        database = STORE / name
        database.mkdir(parents=True, exist_ok=True)
        if name == "win32":
            for entry in commands.values():
                entry["command"] = for_clang(entry)
        (database / "compile_commands.json").write_text(json.dumps(list(commands.values())))
        known = dependencies(build)
        for source, entry in sorted(commands.items()):
            mark = STORE / fingerprint(entry["command"], [source, *known.get(source, [])])
            if not mark.exists():
                tasks.append((source, database, mark))

    def look(task):
        source, database, mark = task
        run = subprocess.run(
            ["clang-tidy", "--quiet", f"-p={database}", str(source)], capture_output=True, text=True, cwd=ROOT
        )
        if run.returncode == 0:
            mark.touch()
            return ""
        return run.stdout or run.stderr

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        findings = [text for text in pool.map(look, tasks) if text]
    for text in findings:
        print(text, file=sys.stderr)
    print(f"clang-tidy: {len(tasks)} files looked at, {len(findings)} with findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
