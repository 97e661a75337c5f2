"""A Slurm of one node on this machine, for as long as a test lasts: controller, node and munge, all on 127.0.0.1, with
all its files in a scratch folder. Debian's slurm-wlm and munge; wants root."""

import os
import shutil
import socket
import subprocess
import time
from pathlib import Path

CONFIGURATION = """ClusterName=lo
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
CredType=cred/munge
SlurmctldPort={ports[0]}
SlurmdPort={ports[1]}
SlurmctldPidFile={root}/slurmctld.pid
SlurmdPidFile={root}/slurmd.pid
StateSaveLocation={root}/state
SlurmdSpoolDir={root}/spool
SlurmctldLogFile={root}/slurmctld.log
SlurmdLogFile={root}/slurmd.log
CommunicationParameters=NoInAddrAny,NoCtldInAddrAny
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
MpiDefault=none
ReturnToService=2
SchedulerParameters=sched_interval=1,sched_min_interval=0,bf_interval=2,batch_sched_delay=0
MinJobAge=3600
JobRequeue=1
KillWait=2
NodeName={host} NodeAddr=127.0.0.1 CPUs=2 RealMemory=1000 State=UNKNOWN
PartitionName=main Nodes=ALL Default=YES MaxTime=60 State=UP
"""

PROGRAMS = ("slurmctld", "slurmd", "munged", "munge", "sbatch", "squeue", "scontrol")


class Unavailable(Exception):
    """Why no Slurm can be had here."""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def run(*command, **more):
    return subprocess.run(command, capture_output=True, text=True, check=False, **more)


def wait_for(what, reached, seconds=30):
    end = time.monotonic() + seconds
    while not reached():
        if time.monotonic() > end:
            raise Unavailable(f"{what} did not come within {seconds} s")
        time.sleep(0.1)


class SlurmNode:
    """with SlurmNode(folder) as node: ...; SLURM_CONF leads to it meanwhile."""

    def __init__(self, folder):
        self.root = Path(folder)
        self.pids = []
        if os.geteuid() != 0:
            raise Unavailable("a node can be started by root alone")
        missing = [program for program in PROGRAMS if not shutil.which(program)]
        if missing:
            raise Unavailable(f"there is no {missing[0]}; install slurm-wlm and munge")

    def __enter__(self):
        for name in ("state", "spool"):
            (self.root / name).mkdir(parents=True)
        host = socket.gethostname()
        configuration = self.root / "slurm.conf"
        configuration.write_text(
            CONFIGURATION.format(host=host, root=self.root, ports=(free_port(), free_port())), encoding="utf-8"
        )
        os.environ["SLURM_CONF"] = str(configuration)
        try:
            self.start_munge()
            self.start("slurmctld")
            wait_for("the controller", lambda: run("scontrol", "ping").returncode == 0)
            self.start("slurmd")
            wait_for("an idle node", lambda: "idle" in run("sinfo", "--noheader", "--format=%T").stdout)
        except BaseException:
            self.__exit__()
            raise
        return self

    def start(self, daemon):
        started = run(daemon, "-f", os.environ["SLURM_CONF"])
        if started.returncode != 0:
            raise Unavailable(f"{daemon} does not start: {started.stderr.strip()}")
        self.pids.append(self.root / f"{daemon}.pid")

    def start_munge(self):
        """One that runs already will do, and stays."""
        if run("munge", "-n").returncode == 0:
            return
        run("install", "-d", "-o", "munge", "-g", "munge", "-m", "755", "/run/munge")
        started = run("runuser", "-u", "munge", "--", shutil.which("munged"))
        if started.returncode != 0:
            raise Unavailable(f"munged does not start: {started.stderr.strip()}")
        self.pids.append(Path("/run/munge/munged.pid"))

    def __exit__(self, *_):
        for file in reversed(self.pids):
            try:
                os.kill(int(file.read_text(encoding="utf-8")), 15)
            except (OSError, ValueError):
                pass
        os.environ.pop("SLURM_CONF", None)
