"""faults_test.py PROGRAM LIBRARY: whole runs in which one call on a file, or one allocation, fails.

Every command runs once for each position that its calls on files have, and for some of the errors
that such a call can give (--all: for all of them); the library of this folder (ledger.h) makes it
fail. What a run may leave then is a contract:

- Inputs keep their bytes. A missing parameter.txt may have come to be, whole.
- An interrupted or partial open, read or write is repeated: the run succeeds.
- A command that ends with status 0 has left every result, with the right bytes, but for times,
  dates and memory in run.log, console.txt and on standard output; run.log also has what was said
  on standard error, such as which input could not be read a second time for its checksum. Else its
  status is 3 or 4; it says why on standard error; none of its results are
  there; and the earlier ones are all as they were, or some are gone, and then the one that comes
  last (run.log) is, too. A page alone, by vort report, is the earlier one or the new one.
- The bare program ends with status 0 and the right reports and standard output, or with status 1,
  a line on standard error and no report but an earlier pair (or one that cannot be removed); or,
  where a file of the study is missing or unreadable, with status 0, a message on standard output
  and no report, or, where P_value.txt cannot be made or replaced, with status 0 and a line on
  standard error. A marker table that may not be read ends it behind a report without names. What
  standard output does not take is told on standard error, and costs no report.
- A run that is killed leaves earlier results as above, or new ones, never both; where the last one
  is, all are. Run again (with --force where something is left), it succeeds.
- No run hangs, or dies of another signal.

Without --all, each position fails in one of its ways, drawn with a printed seed, and the process is
killed before each that changes a file; of more than three like positions on one file, three are drawn.
A fault that breaks the contract is printed with what makes it again.
"""
import argparse
import collections
import concurrent.futures
import dataclasses
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from judgement import Judge
from scenarios import SECONDS, contents, make_base, masked, prepare, scenarios

WAYS = {
    "open": ["EACCES", "EMFILE", "EIO", "ENOMEM", "EINTR", "ENOSPC"],
    "read": ["EIO", "EINTR", "short", "EIO+"],
    "write": ["ENOSPC", "EIO", "EINTR", "short", "ENOSPC+", "EDQUOT"],
    "close": ["EIO", "ENOSPC"],
    "rename": ["EIO", "ENOSPC", "EACCES", "EIO+"],
    "link": ["EIO", "EPERM", "EIO+"],
    "unlink": ["EACCES", "EIO", "EROFS+"],
    "mkdir": ["EACCES", "ENOSPC"],
    "fsync": ["EIO", "ENOSPC", "EIO+"],
    "flock": ["ENOLCK", "EINTR", "EAGAIN"],
    "mmap": ["ENOMEM", "EACCES", "ENODEV"],
    "seek": ["EIO"],
    "truncate": ["EIO"],
    "stat": ["EACCES", "EIO", "EIO+"],
    "statvfs": ["EIO"],
    "opendir": ["ENOMEM", "EMFILE"],
    "readdir": ["EIO"],
}
CHANGES = ("open", "write", "rename", "link", "unlink", "mkdir", "truncate")


@dataclasses.dataclass
class Fault:
    position: str
    deed: str

    @property
    def of_memory(self):
        return self.position.startswith("alloc ")


class Harness:
    def __init__(self, options, work):
        self.program = options.program.resolve()
        self.library = options.library.resolve()
        self.work = work
        self.scenarios = {scenario.name: scenario for scenario in scenarios()}

    def environment(self, scenario, folder, fault, log):
        watch = str(folder) + (":<stdout>" if scenario.watched_stdout else "")
        more = {"VORT_FAULTS_WATCH": watch, "LD_PRELOAD": str(self.library)}
        if fault is not None:
            more |= {"VORT_FAULTS_AT": fault.position, "VORT_FAULTS_DO": fault.deed}
        if log is not None:
            more["VORT_FAULTS_LOG"] = str(log)
        return {**os.environ, "VORT_THREADS": str(scenario.threads), "TZ": "UTC", **more}

    def run(self, scenario, folder, fault=None, log=None, words=()):
        return subprocess.run([self.program, *(scenario.words + list(words))], cwd=folder,
                              capture_output=True, stdin=subprocess.DEVNULL, timeout=SECONDS,
                              env=self.environment(scenario, folder, fault, log))

    def fresh_copy(self, scenario):
        folder = self.work / f"process{os.getpid()}/study"
        shutil.rmtree(folder.parent, ignore_errors=True)
        shutil.copytree(scenario.folder, folder)
        return folder, folder.parent / "log"

    def run_before(self, words, folder, killed_at):
        """A command that comes before a scenario's own; killed before a call, it has succeeded."""
        environment = dict(os.environ)
        if killed_at:
            kind, _, name = killed_at.partition(" ")
            environment |= {"VORT_FAULTS_WATCH": str(folder), "LD_PRELOAD": str(self.library),
                            "VORT_FAULTS_AT": f"{kind} 1 {name}",
                            "VORT_FAULTS_DO": "kill-before"}
        done = subprocess.run([self.program, *words], cwd=folder, capture_output=True,
                              env=environment)
        if killed_at and done.returncode == -9:
            done.returncode = 0
        return done

    def prepare(self):
        base = self.work / "base"
        base.mkdir()
        make_base(base)
        for scenario in self.scenarios.values():
            prepare(scenario, base, self.work / "studies" / scenario.name, self.run_before)
            self.record(scenario)

    def record(self, scenario):
        """What the command does where nothing fails."""
        folder, log = self.fresh_copy(scenario)
        done = self.run(scenario, folder, log=log)
        scenario.stderr = done.stderr
        judge = Judge(scenario, Fault("none 0 -", ""), done, folder)
        if done.returncode != 0:
            raise SystemExit(f"{scenario.name}: {done.stderr.decode()}")
        scenario.right = judge.left
        scenario.right_extra = {name: masked(name, text) for name, text in judge.files.items()
                                if any(map(name.startswith, scenario.extra))}
        scenario.parameters = judge.files.get("parameter.txt")
        scenario.stdout = masked("<stdout>", done.stdout)
        *positions, allocations = log.read_text().splitlines()
        scenario.positions = positions
        scenario.allocations = int(allocations.split()[1])

    def complaints(self, scenario, fault):
        """Whether the position was reached, and what the run did against the contract."""
        folder, log = self.fresh_copy(scenario)
        try:
            done = self.run(scenario, folder, fault, log)
        except subprocess.TimeoutExpired:
            return True, ["hangs"]
        complaints = Judge(scenario, fault, done, folder).verdict()
        reached = "\n!" in "\n" + log.read_text()
        # A default file that has come to be makes another run of the next one.
        again = scenario.parameters in (None, scenario.inputs_before.get("parameter.txt"))
        if done.returncode == -9 and not complaints and again:
            complaints = self.run_again(scenario, folder)
        return reached, complaints

    def run_again(self, scenario, folder):
        place = folder if scenario.out == "." else folder / scenario.out
        force = (scenario.words[:1] in (["run"], ["plan"], ["merge"], ["predict"], ["import"])
                 and not {"--force", "--extend"} & set(scenario.words)
                 and any((place / name).exists() for name in scenario.results))
        resume = scenario.words[:1] == ["run"] and (place / "plan.json").exists()
        if "--resume" in scenario.words and not resume:  # the run was at its end
            return []
        words = ["--resume"] if resume else ["--force"] if force else []
        if "--resume" in scenario.words:
            words = []
        try:
            done = self.run(scenario, folder, words=words)
        except subprocess.TimeoutExpired:
            return ["run again, it hangs"]
        if words:
            done.stdout = scenario.stdout
        self.forget_force(folder)
        complaints = Judge(scenario, Fault("none 0 -", ""), done, folder).verdict()
        if done.returncode != 0:
            complaints.append("status " + str(done.returncode) + ": " + done.stderr.decode())
        return ["run again: " + complaint for complaint in complaints]

    @staticmethod
    def forget_force(folder):
        """The log of a run with --force or --resume differs in its command alone."""
        log = folder / "out/run.log"
        if log.exists():
            text = re.sub(rb" out( --force)? --(force|resume)\b", rb" out\1",
                          log.read_bytes())
            log.write_bytes(text)


def some_of_each(positions, draw, most=3):
    """The positions, but only `most` of those of one kind on one file."""
    counts = collections.Counter()
    shuffled = draw.sample(positions, len(positions))
    kept = set()
    for position in shuffled:
        kind, _, name = position.split(" ", 2)
        file = kind, re.sub(r"/parts/[a-z]+-?\d*", "/parts/", name)
        counts[file] += 1
        if counts[file] <= most:
            kept.add(position)
    return [position for position in positions if position in kept]


def faults_of_files(scenario, options, draw):
    positions = [position for position in scenario.positions
                 if not scenario.only_inputs
                 or position.split(" ", 2)[2] in scenario.inputs_before]
    if not options.all:
        positions = some_of_each(positions, draw)
    if not options.all and not scenario.thorough:
        positions = draw.sample(positions, min(20, len(positions)))
    for position in positions:
        kind = position.split()[0]
        ways = WAYS[kind]
        for way in ways if options.all else [draw.choice(ways)]:
            yield Fault(position, way)
        if options.all:
            yield Fault(position, "kill-after")
        if options.all or (kind in CHANGES and scenario.is_output(position.split(" ", 2)[2])):
            yield Fault(position, "kill-before")


def faults_of_memory(scenario, options, draw):
    numbers = range(1, scenario.allocations + 1)
    if not options.all and not scenario.each_allocation:
        wanted = 60 if scenario.thorough and not scenario.only_inputs else 10
        numbers = draw.sample(numbers, min(wanted, len(numbers)))
    for number in numbers:
        for way in ("ENOMEM", "ENOMEM+") if options.all else [draw.choice(("ENOMEM", "ENOMEM+"))]:
            yield Fault(f"alloc {number} -", way)


def all_faults(harness, options, draw):
    found = []
    for scenario in harness.scenarios.values():
        for faults in (faults_of_files, faults_of_memory):
            found += [(scenario.name, fault) for fault in faults(scenario, options, draw)]
    found = [(name, fault) for name, fault in found
             if re.search(options.only, f"{name} / {fault.position} / {fault.deed}")]
    draw.shuffle(found)
    return found


def tell(harness, name, fault, complaints):
    scenario = harness.scenarios[name]
    print(f"{name} / {fault.position} / {fault.deed}: " + "; ".join(complaints))
    environment = f"VORT_THREADS={scenario.threads} VORT_FAULTS_WATCH=$PWD"
    environment += ":'<stdout>'" if scenario.watched_stdout else ""
    print(f"    {environment} VORT_FAULTS_AT='{fault.position}' VORT_FAULTS_DO='{fault.deed}' "
          f"LD_PRELOAD={harness.library} {' '.join([str(harness.program), *scenario.words])}",
          flush=True)


HARNESS = None  # of this process; those that work for it are its copies


def work_on(task):
    name, fault = task
    return name, fault, *HARNESS.complaints(HARNESS.scenarios[name], fault)


def run_all(options, work):
    global HARNESS
    seed = options.seed if options.seed is not None else random.SystemRandom().randrange(10**6)
    HARNESS = Harness(options, work)
    HARNESS.prepare()
    positions = sum(len(scenario.positions) for scenario in HARNESS.scenarios.values())
    tasks = all_faults(HARNESS, options, random.Random(seed))
    print(f"seed {seed}: {len(tasks)} faults at {positions} positions of "
          f"{len(HARNESS.scenarios)} commands", flush=True)
    broken = unreached = 0
    with concurrent.futures.ProcessPoolExecutor(options.jobs) as workers:
        for name, fault, reached, complaints in workers.map(work_on, tasks, chunksize=8):
            unreached += not reached
            if complaints:
                broken += 1
                tell(HARNESS, name, fault, complaints)
    return len(tasks), broken, unreached


def arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", type=Path)
    parser.add_argument("library", type=Path)
    parser.add_argument("--all", action="store_true", help="every position in all its ways")
    parser.add_argument("--only", default="", metavar="PATTERN",
                        help="faults whose 'COMMAND / POSITION / WAY' has this in it")
    parser.add_argument("--seed", type=int, help="of what is drawn")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--keep", type=Path, metavar="DIR",
                        help="a new folder for the studies, which stay; to make a fault again in")
    return parser.parse_args()


def main():
    options = arguments()
    began = time.monotonic()
    memory = Path("/dev/shm")
    fast = str(memory) if os.access(memory, os.W_OK) else None
    if options.keep:
        options.keep.mkdir()
        faults, broken, unreached = run_all(options, options.keep.resolve())
    else:
        with tempfile.TemporaryDirectory(dir=fast) as folder:
            faults, broken, unreached = run_all(options, Path(folder).resolve())
    print(f"{faults} faults in {time.monotonic() - began:.0f} s: {broken} broke the contract, "
          f"{unreached} were not reached")
    return 1 if broken or faults == 0 or unreached > faults / 50 else 0


if __name__ == "__main__":
    sys.exit(main())
