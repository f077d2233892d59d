"""What a run under a fault may leave: the contract of faults_test.py."""
import hashlib
import re

from scenarios import contents, masked

# Opened by a library that does not repeat what a signal interrupted.
NAMES = "Chromosome_SNP_Name.txt"


class Judge:
    """The complaints about one run."""

    def __init__(self, scenario, fault, done, folder):
        self.scenario = scenario
        self.fault = fault
        self.done = done
        self.killed = fault.deed.startswith("kill")
        self.files = contents(folder)
        place = "" if scenario.out == "." else scenario.out + "/"
        self.left = {name: masked(name, self.files[place + name]) for name in scenario.results
                     if place + name in self.files}
        self.earlier = {name: masked(name, text) for name, text in scenario.earlier.items()}
        if "run.log" in self.left and self.left["run.log"] != self.earlier.get("run.log"):
            self.left["run.log"] = self.without_what_was_told(self.left["run.log"])
        self.complaints = []

    def without_what_was_told(self, log):
        """A log also has what this run alone said on standard error; and there, too, stands which
        inputs have no checksum."""
        told = set(self.done.stderr.splitlines()) - set(self.scenario.stderr.splitlines())
        for line in told:
            log = log.replace(line + b"\n", b"")
            path, unread, _ = line.removeprefix(b"vort: ").partition(b": (could not be read again)")
            if unread:
                log = re.sub(rb"(?m)^  \(could not be read again\)(  .*  " + re.escape(path) + rb")$",
                             self.checksum(path) + rb"\1", log)
        return log

    def checksum(self, path):
        text = self.scenario.inputs_before.get(path.decode(), b"")
        return b"  " + hashlib.sha256(text).hexdigest().encode()

    def complain(self, text):
        self.complaints.append(text)

    def verdict(self):
        self.judge_inputs()
        if self.done.returncode == -9 and self.killed:
            self.judge_killed()
        elif self.done.returncode < 0:
            self.complain(f"died of signal {-self.done.returncode}")
        elif self.scenario.bare:
            self.judge_bare()
        else:
            self.judge_command()
        return self.complaints

    def judge_inputs(self):
        for name, text in self.scenario.inputs_before.items():
            if self.files.get(name) != text:
                self.complain(f"{name}: the input was changed")
        written = self.files.get("parameter.txt")
        if (self.scenario.bare and not self.killed and written is not None
                and written != self.scenario.parameters):
            self.complain("parameter.txt: is neither the default file nor absent")

    def is_right(self):
        return self.left == self.scenario.right and self.extra_is_right()

    def extra_is_right(self):
        return all(masked(name, self.files.get(name, b"")) == text
                   for name, text in self.scenario.right_extra.items())

    def differences(self):
        right = self.scenario.right
        return ", ".join([name + (" missing" if name not in self.left else " differs")
                          for name in right if self.left.get(name) != right[name]]
                         + [name + " too many" for name in self.left if name not in right]
                         or ["prepared files differ"])

    def must_succeed(self):
        kind = self.fault.position.partition(" ")[0]
        return self.fault.deed in ("EINTR", "short") and kind in ("open", "read", "write")

    def judge_told(self, statuses):
        """The end of a run that did not succeed."""
        if self.done.returncode not in statuses:
            self.complain(f"status {self.done.returncode}")
        if not self.done.stderr.strip():
            self.complain("nothing on standard error")
        if self.must_succeed():
            self.complain("an interrupted call ended the run: " + self.last_words())

    def last_words(self):
        return self.done.stderr.decode(errors="replace").strip().rpartition("\n")[2]

    # -- commands

    def judge_command(self):
        if self.done.returncode != 0:
            self.judge_told((3, 4))
            self.judge_nothing_new()
        elif not self.is_right():
            self.complain("status 0, but " + self.differences())
        elif masked("<stdout>", self.done.stdout) != self.scenario.stdout:
            self.complain("status 0, but standard output differs")

    def judge_nothing_new(self):
        """No result of this run, and the earlier ones as they were, or some of them and no sign
        that they are whole. A single result may be the new one; names that have to stay, since no
        file can be renamed any more, are as after a kill; and so are the parts of a task, each of
        which is whole."""
        renaming_fails = self.fault.position.startswith("rename ") and self.fault.deed.endswith("+")
        if renaming_fails or self.scenario.words[0] == "task" or (len(self.scenario.results) == 1 and self.left == self.scenario.right):
            return self.judge_killed()
        new = [name for name, text in self.left.items() if self.earlier.get(name) != text]
        if new:
            self.complain(f"status {self.done.returncode}, but left " + ", ".join(new))
        self.judge_sign_of_wholeness(self.earlier)

    def judge_sign_of_wholeness(self, whole):
        last = self.scenario.results[-1]
        if last in self.left and self.left != whole:
            missing = [name for name in whole if name not in self.left]
            self.complain(f"{last} is there without " + ", ".join(missing or ["order"]))

    def judge_killed(self):
        if self.scenario.bare:
            return self.judge_killed_bare()
        if self.left == self.scenario.right:
            return
        origins = {self.origin(name) for name in self.left} - {"both"}
        if origins <= {"earlier"}:
            self.judge_sign_of_wholeness(self.earlier)
        elif origins == {"new"}:
            self.judge_sign_of_wholeness(self.scenario.right)
        else:
            self.complain("a mixture: " + ", ".join(f"{name} {self.origin(name)}"
                                                    for name in self.left))

    def origin(self, name):
        text = self.left[name]
        new = self.scenario.right.get(name) == text
        earlier = self.earlier.get(name) == text
        return "both" if new and earlier else "new" if new else "earlier" if earlier else "torn"

    # -- the bare program

    def judge_bare(self):
        status = self.done.returncode
        stdout = masked("<stdout>", self.done.stdout)
        if status != 0:
            self.judge_told((1,))
            self.judge_no_reports()
        elif self.is_right() and (stdout == self.scenario.stdout or self.stdout_was_told(stdout)):
            return
        elif self.is_early_end(stdout):
            if self.must_succeed() or self.fault.of_memory:
                self.complain("status 0 and an early end")
            self.judge_no_reports()
        elif self.is_right():
            self.complain("status 0, but standard output differs")
        else:
            self.complain("status 0, but " + self.differences())

    def stdout_was_told(self, stdout):
        """What standard output could not take is lost and told."""
        return (self.fault.position.endswith("<stdout>") and not self.must_succeed()
                and len(stdout) < len(self.scenario.stdout)
                and b"standard output" in self.done.stderr)

    def is_early_end(self, stdout):
        """A message that the reference does not have; without its names a report stays. A file of
        p-values that cannot be made or replaced is told on standard error alone."""
        if b"P_value.txt" in self.done.stderr and self.scenario.stdout.startswith(stdout):
            return True
        if not set(stdout.splitlines()) - set(self.scenario.stdout.splitlines()):
            return False
        if self.fault.position.endswith(NAMES) and self.fault.deed == "EACCES":
            right = self.scenario.right["Final_result.txt"]
            if right.startswith(self.left.get("Final_result.txt", b"-")):
                self.left = {}
        return True

    def judge_no_reports(self):
        unremovable = self.fault.position.startswith("unlink ")
        if unremovable and self.left.items() <= self.earlier.items():
            return
        if self.left and self.left != self.earlier:
            self.complain(f"status {self.done.returncode}, but left " + ", ".join(
                f"{name} ({self.origin(name)})" for name in self.left))
        elif self.left and self.done.returncode == 0:
            self.complain("status 0, but left earlier reports")

    def judge_killed_bare(self):
        for name in self.left:
            if self.origin(name) == "torn":
                self.complain(f"{name} is torn")
        if len({self.origin(name) for name in self.left} - {"both"}) > 1:
            self.complain("a mixture of reports")
