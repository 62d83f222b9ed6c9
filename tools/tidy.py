#!/usr/bin/python3
"""Runs clang-tidy over the program's sources: portable files as the host build compiles them, the others
as the Windows build does; with --tests also over the tests. The static analyzer gives a function up early,
which finds most in a third of the time; with --deep it has its own patience. Much of the rest goes into the
headers of the library and the platform, so the sources of a folder are looked at as one unit that holds them
all, or as several where their names clash. A unit is checked again only when a file of it, a header that it
includes, or the rules have changed; units that passed are recorded in build/tidy."""

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
SHALLOW = [] if "--deep" in sys.argv else ["-Xclang", "-analyzer-config", "-Xclang", "max-nodes=15000"]


def compile_commands(build):
    """{source: command} of our own files, of a configured build folder."""
    text = subprocess.run(["ninja", "-C", build, "-t", "compdb"], capture_output=True, text=True, check=True).stdout
    skipped = ("build",) if "--tests" in sys.argv else ("build", "tests")
    commands = {}
    for entry in json.loads(text):
        source = Path(entry["directory"], entry["file"]).resolve()
        ours = source.is_relative_to(ROOT) and source.relative_to(ROOT).parts[0] not in skipped
        # What tests compile anew, with options of their own, is looked at as the program has it.
        anew = entry["output"].startswith("tests/") and "tests" not in source.parts
        if ours and not anew and source.suffix == ".cpp" and " -c " in entry["command"]:
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


def for_clang(entry, windows):
    """The words of a command as clang understands them, but for its source and its outputs."""
    words = shlex.split(entry["command"])
    while Path(words[0]).name in ("ccache", "sccache"):
        words.pop(0)
    compiler = words.pop(0)
    options, skip = [], False
    for word in words:
        if not skip and word not in ("-c", "-MD", entry["file"], "-Winvalid-pch"):
            if word.endswith("/cmake_pch.hxx"):  # by another name, lest what gcc made of it is taken
                plain = STORE / (Path(word).parent.name + ".hxx")
                plain.write_bytes(Path(word).read_bytes())
                word = str(plain)
            if word not in ("-o", "-MT", "-MF"):
                options.append(word)
        skip = word in ("-o", "-MT", "-MF")
    options += SHALLOW
    if not windows:
        return ["clang++", *options]
    include = subprocess.run([compiler, "-print-file-name=include"], capture_output=True, text=True).stdout.strip()
    library = Path(include).parent / "include" / "c++"
    paths = [library, library / MINGW, library / "backward", Path("/usr") / MINGW / "include"]
    return ["clang++", f"--target={MINGW}", "-nostdinc++", *(w for p in paths for w in ("-isystem", str(p))), *options]


def units(sources, words, folder, name):
    """[(unit, its sources)]: units that compile, each of as many of the sources as can be."""
    unit = folder / f"{name}.cpp"
    # Not by #include: much is looked for in the main file alone.
    unit.write_text("".join(source.read_text() for source in sources))
    command = [*words, "-w", "-fsyntax-only", str(unit)]
    if len(sources) == 1 or subprocess.run(command, capture_output=True, cwd=ROOT).returncode == 0:
        return [(unit, sources)]
    half = len(sources) // 2
    return units(sources[:half], words, folder, name + "0") + units(sources[half:], words, folder, name + "1")


def fingerprint(command, files):
    digest = hashlib.sha256(command.encode())
    for file in sorted({ROOT / ".clang-tidy", Path(__file__), *files}):
        digest.update(file.read_bytes() if file.is_file() else b"")
    return digest.hexdigest()


def in_sources(text, unit, sources):
    """The same text, with places in the unit named as places in its sources."""
    lines = [(source, number + 1) for source in sources for number in range(source.read_text().count("\n"))]
    place = lambda match: "{}:{}".format(*lines[int(match[1]) - 1])
    return re.sub(re.escape(str(unit)) + r":(\d+)", place, text)


def rooms(commands):
    """{(folder, ...): its sources}; sources are together only when they are compiled alike."""
    found = {}
    for source, entry in sorted(commands.items()):
        target = entry["output"].partition(".dir/")[0]
        found.setdefault((source.parent.relative_to(ROOT), target), []).append(source)
    return found


def main():
    tasks = []
    seen = set()
    pool = ThreadPoolExecutor(os.cpu_count())
    for name in ("host", "win32"):
        build = ROOT / "build" / name
        if not (build / "build.ninja").exists():
            print(f"tools/tidy.py: {build} is not configured", file=sys.stderr)
            return 1
        commands = {s: e for s, e in compile_commands(build).items() if s not in seen}
        seen |= set(commands)
        known = dependencies(build)
        folder = STORE / name
        folder.mkdir(parents=True, exist_ok=True)
        splits = []
        for (room, _), sources in rooms(commands).items():
            words = for_clang(commands[sources[0]], name == "win32")
            unit = pool.submit(units, sources, words, folder, str(room).replace("/", "-"))
            splits.append((words, unit))
        for words, split in splits:
            for unit, sources in split.result():
                files = {file for source in sources for file in (source, *known.get(source, []))}
                mark = STORE / fingerprint(shlex.join(words), files)
                if not mark.exists():
                    tasks.append((unit, sources, words, mark))

    def look(task):
        unit, sources, words, mark = task
        command = ["clang-tidy", "--quiet", f"--config-file={ROOT / '.clang-tidy'}", str(unit), "--", *words[1:]]
        run = subprocess.run(command, capture_output=True, text=True, cwd=ROOT)
        if run.returncode == 0:
            mark.touch()
            return ""
        return in_sources(run.stdout or run.stderr, unit, sources)

    findings = [text for text in pool.map(look, tasks) if text]
    for text in findings:
        print(text, file=sys.stderr)
    print(f"clang-tidy: {len(tasks)} units looked at, {len(findings)} with findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
