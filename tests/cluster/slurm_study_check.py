"""A simulated study of two groups on this machine and through a Slurm of one node, where one task is requeued and
another killed while they work: the results are the same, byte for byte, and what failed is told and made up for.

Usage: slurm_study_check.py TAVMAP FOLDER. Ends with 77 where no Slurm can be had, and says why."""

import os
import re
import shutil
import signal
import sys
import time
from pathlib import Path

from slurm_node import SlurmNode, Unavailable, run, wait_for

PARTICIPANTS = 6  # the last moves too much
MODEL = """[inference]
shuffles = 100
[[test]]
name = "facesHouses"
maps = ["dTAV"]
within = "faces - houses"
"""
OPTIONS = (
    "--atlas=study/derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz --labels=Reference "
    "--trial-types=faces --trial-types=houses --confounds=trans_y --confounds=a_comp_cor_00 --fd-threshold=0.5 "
    "--drop-volumes=auto"
).split()


def expect(holds, what):
    if not holds:
        sys.exit(f"FAILED: {what}")


class Check:
    def __init__(self, tavmap, folder):
        self.tavmap, self.folder = tavmap, folder

    def call(self, *arguments):
        return run(self.tavmap, *arguments, cwd=self.folder)

    def bids(self, out, *more):
        return self.call("bids", "study", out, *more, *OPTIONS)

    def submit(self, *more):
        group = ("--model=group.toml", "--scheduler=slurm", "--despite-failures")
        return self.bids("cluster out", "participant", "group", *group, "--mem-per-task=300M", "--time=10", *more)

    def on_this_machine(self):
        made = self.call("simulate", "study", "--group-study", f"--participants={PARTICIPANTS}", "--seed=3")
        expect(made.returncode == 0, made.stderr)
        computed = self.bids("machine", "participant", "--seed=7", "--jobs=2")
        expect(computed.returncode == 1 and "sub-06" in computed.stderr, f"one bad participant: {computed.stderr}")
        (self.folder / "group.toml").write_text(MODEL, encoding="utf-8")
        grouped = self.bids("machine", "group", "--model=group.toml")
        expect(grouped.returncode == 0, grouped.stderr)

    def jobs(self):
        """Task folder of the last submission, and the numbers of its jobs."""
        last = sorted((self.folder / "cluster out" / "work" / "cluster").glob("[0-9]*"))[-1]
        return last, re.findall(r'"Job": "(\d+)"', (last / "submission.json").read_text(encoding="utf-8"))

    def wait_for_end(self):
        _, jobs = self.jobs()
        wait_for("the end of the jobs", lambda: run("squeue", "--noheader", f"--jobs={','.join(jobs)}").stdout == "", 300)

    def disturb(self):
        """Requeues a task that works, and kills the program of another."""
        last, jobs = self.jobs()
        while not (last / "participants/1.err").exists():
            time.sleep(0.01)
        requeued = run("scontrol", "requeue", f"{jobs[0]}_1")
        expect(requeued.returncode == 0 and not (last / "participants/1.code").exists(),
               f"task 1 was requeued while it worked: {requeued.stderr}")
        victim = wait_for_program("--participant-label=03")
        os.kill(victim, signal.SIGKILL)
        released = lambda: run("scontrol", "update", f"JobId={jobs[0]}_1", "StartTime=now").returncode == 0
        wait_for("the return of the requeued task", released)

    def through_slurm(self):
        submitted = self.submit("--seed=7")
        expect(submitted.returncode == 1, "a participant that cannot be computed is told")
        expect("participants: 5 tasks as job " in submitted.stdout, submitted.stdout + submitted.stderr)
        self.disturb()
        meanwhile = self.submit("--seed=7")
        expect("Nothing is submitted while they are under way" in meanwhile.stdout, meanwhile.stdout)
        self.wait_for_end()
        _, jobs = self.jobs()
        expect(" Restarts=1 " in run("scontrol", "--oneliner", "show", "job", f"{jobs[0]}_1").stdout, "a requeued task")
        collected = self.submit("--collect")
        print(collected.stdout)
        expect(collected.returncode == 1, "a killed task is told by the exit code")
        expect("participants: 4 done, 1 failed" in collected.stdout, collected.stdout)
        expect("FAILED: participants 3 (sub-03" in collected.stdout and "signal 9" in collected.stdout, collected.stdout)
        again = self.submit("--seed=7")
        expect("participants: 1 task as job " in again.stdout, f"only what is missing: {again.stdout}{again.stderr}")
        self.wait_for_end()
        last = self.submit("--seed=7")
        print(last.stdout)
        expect("Nothing is missing" in last.stdout, last.stdout)

    def compare(self):
        machine, cluster = (contents(self.folder / out) for out in ("machine", "cluster out"))
        different = [name for name in sorted(machine | cluster) if machine.get(name) != cluster.get(name)]
        expect(not different, "these files differ: " + ", ".join(different))
        records = [name for name in machine if name.startswith("sub-") and name.endswith("_tavmap.json")]
        expect(len(records) == PARTICIPANTS - 1, f"a record each: {records}")
        print(f"{len(machine)} files are the same")


def wait_for_program(word):
    """The process of `tavmap bids` that has the word among its own."""
    found = []

    def look():
        for process in Path("/proc").glob("[0-9]*"):
            try:
                words = (process / "cmdline").read_bytes().split(b"\0")
            except OSError:
                continue
            if words[1:2] == [b"bids"] and word.encode() in words:
                found.append(int(process.name))
        return bool(found)

    end = time.monotonic() + 120
    while not look():
        expect(time.monotonic() < end, f"no process with {word}")
        time.sleep(0.01)
    return found[0]


def contents(folder):
    return {
        str(file.relative_to(folder)): file.read_bytes()
        for file in folder.rglob("*")
        if file.is_file() and "work" not in file.relative_to(folder).parts
    }


def main():
    folder = Path(sys.argv[2])
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    try:
        with SlurmNode(folder / "slurm"):
            check = Check(os.path.abspath(sys.argv[1]), folder)
            check.on_this_machine()
            check.through_slurm()
            check.compare()
    except Unavailable as reason:
        print(f"left out: {reason}")
        sys.exit(77)


if __name__ == "__main__":
    main()
