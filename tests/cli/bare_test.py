"""bare_test.py PROGRAM: the bare program in directories that do not suit it: it loses no input, leaves
no report of another run, and says what was wrong."""
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = Path(sys.argv[1]).resolve()
CASES = Path(__file__).resolve().parents[1] / "golden"
REPORTS = ["P_value.txt", "Final_result.txt"]
INPUTS = ["parameter.txt", "dat1.txt", "Chromosome_SNP_Name.txt"]
MARK = b"\xef\xbb\xbf"


class Bare(unittest.TestCase):
    def make_study(self, case="small"):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.case = CASES / case
        self.work = Path(folder.name)
        for name in INPUTS:
            shutil.copy(self.case / name, self.work)

    def setUp(self):
        self.make_study()

    def vort(self, status=0, said=None, shell="exec {}", env=None, **more):
        """Standard error is to be one line with `said`, or nothing where that is empty."""
        done = subprocess.run(["bash", "-c", shell.format(PROGRAM)], cwd=self.work,
                              capture_output=True, env={**os.environ, **(env or {})}, **more)
        told = done.stderr.decode()
        self.assertEqual(done.returncode, status, told)
        if said is not None:
            self.assertRegex(told, f"^[^\n]*{said}[^\n]*\n$" if said else "^$")
        return done

    def assert_reports(self):
        for name in REPORTS:
            self.assertEqual((self.work / name).read_bytes(),
                             (self.case / "expected" / name).read_bytes(), name)
        self.assert_only([*INPUTS, *REPORTS])

    def assert_only(self, names):
        self.assertEqual(sorted(path.name for path in self.work.iterdir()), sorted(names))

    def replace(self, name, before, after):
        path = self.work / name
        path.write_bytes(path.read_bytes().replace(before, after))

    def leave_reports(self):
        for name in REPORTS:
            (self.work / name).write_text("of an earlier run")

    def test_any_number_of_threads(self):
        for threads in ("1", "2", "7", "64"):
            self.make_study("linked")
            self.vort(env={"VORT_THREADS": threads}, said="")
            self.assert_reports()
        self.vort(env={"VORT_THREADS": "2x"},
                  said='VORT_THREADS: a number of threads .* not "2x"')

    def test_an_input_that_has_the_name_of_an_output_stays(self):
        for name, link in (("beta.txt", None), ("./P_value.txt", None),
                           ("output_X_Y.txt", None), ("Final_result.txt.unfinished", None),
                           ("dat1.txt", "symlink_to"), ("dat1.txt", "hardlink_to")):
            with self.subTest(name=name, link=link):
                self.make_study()
                if link:
                    getattr(self.work / "Final_result.txt", link)(self.work / "dat1.txt")
                else:
                    (self.work / "dat1.txt").rename(self.work / name)
                    self.replace("parameter.txt", b"dat1.txt", name.encode())
                before = sorted(path.name for path in self.work.iterdir())
                self.vort(status=1, said="would be lost, since .*; give the input another name")
                self.assertEqual((self.work / name).read_bytes(),
                                 (self.case / "dat1.txt").read_bytes())
                self.assert_only(before)

    def test_an_input_on_the_way_to_default_parameters_stays(self):
        self.make_study()
        (self.work / "parameter.txt").unlink()
        table = self.work / "Chromosome_SNP_Name.txt"
        table.rename(self.work / "parameter.txt.unfinished")
        table.symlink_to("parameter.txt.unfinished")
        before = table.read_bytes()
        self.vort(said="parameter.txt.unfinished: would be replaced .*; give it another name")
        self.assertEqual(table.read_bytes(), before)

    def test_reports_that_cannot_be_written_are_told_before_the_analysis(self):
        for name, status in zip(REPORTS, (0, 1)):
            with self.subTest(name):
                self.make_study()
                (self.work / name).mkdir()
                done = self.vort(status=status, said=f"{name}: could not be replaced")
                self.assertEqual(done.stdout, b"")

    def test_an_early_end_leaves_no_earlier_report(self):
        def best_m(number):
            self.replace("parameter.txt", b"Best_m", b"Best_m " + number + b" ")

        for name, spoil in (("data set", lambda: (self.work / "dat1.txt").unlink()),
                            ("parameters", lambda: (self.work / "parameter.txt").unlink()),
                            ("Best_m", lambda: best_m(b"9999")),
                            ("size", lambda: self.replace("parameter.txt", b"Sample_size",
                                                          b"Sample_size 0 Head 1 Sample_size 0 "))):
            with self.subTest(name):
                self.make_study()
                self.leave_reports()
                spoil()
                self.vort()
                self.assertFalse(any((self.work / report).exists() for report in REPORTS))

    def test_a_full_disk_leaves_no_report(self):
        for size in (100, 200, 500, 1300):
            with self.subTest(size):
                self.make_study()
                self.leave_reports()
                limits = (resource.RLIMIT_FSIZE, (size, size))
                self.vort(status=1, said=r"could not be fully written \(File too large\)",
                          preexec_fn=lambda: resource.setrlimit(*limits))
                self.assert_only(INPUTS)

    def test_leftovers_and_streams_that_are_closed_do_no_harm(self):
        for shell in ("mkdir beta.txt output_X_Y.txt; {}; code=$?; rmdir beta.txt output_X_Y.txt; "
                      "exit $code",
                      "echo x >beta.txt; echo x >P_value.txt.unfinished; {}",
                      "{} 2>&-", "{} >&-", "{} <&-", "{} <&- >&- 2>&-", "{} >/dev/full",
                      "{} | head -n 1", "{} 2>/dev/full"):
            with self.subTest(shell):
                self.make_study()
                self.vort(shell=shell)
                self.assert_reports()

    def test_byte_order_marks_are_told(self):
        for name in INPUTS:
            with self.subTest(name):
                self.make_study()
                path = self.work / name
                path.write_bytes(MARK + path.read_bytes())
                self.assertIn(f"{name}:1: begins with a byte order mark",
                              self.vort().stderr.decode())

    def test_pipes_are_waited_for_with_the_directory_locked(self):
        for name in INPUTS:
            with self.subTest(name):
                self.make_study()
                pipe = self.work / name
                pipe.unlink()
                os.mkfifo(pipe)
                first = subprocess.Popen([PROGRAM], cwd=self.work, stdout=subprocess.DEVNULL,
                                         stderr=subprocess.PIPE)
                # The table is opened a second time, for its being writable.
                self.assertIn(b"is a pipe", first.stderr.readline())
                self.vort(status=1, said="another run is at work in this directory")
                with open(pipe, "wb") as writer:
                    writer.write((self.case / name).read_bytes())
                first.stderr.close()
                self.assertEqual(first.wait(), 0)
                self.assert_reports()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
