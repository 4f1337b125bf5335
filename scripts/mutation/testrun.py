"""Runs the tests of a build until one fails; used by scripts/mutate."""

import concurrent.futures
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import time
from pathlib import Path

# Tests that need an X server, install the program or configure a build of their own.
LEFT_OUT = re.compile("xvfb|installed|qslogdir|fuzz|script")


class Tests:
    """The tests of a build folder, quick ones first."""

    def __init__(self, work, is_known):
        self.temporary = work / "tmp"
        shown = subprocess.run(["ctest", "--show-only=json-v1"], cwd=work / "build", check=True,
                               capture_output=True).stdout
        self.tests = {}  # name: (command, folder, environment)
        self.seconds = {}
        for test in json.loads(shown)["tests"]:
            values = {p["name"]: p["value"] for p in test["properties"]}
            if not LEFT_OUT.search(test["name"]):
                self.tests[test["name"]] = (test["command"], values["WORKING_DIRECTORY"],
                                            values.get("ENVIRONMENT", []))
        known = work / "seconds.json"
        if is_known and known.exists():
            self.seconds = json.loads(known.read_text())
        else:
            self.measure()
            known.write_text(json.dumps(self.seconds))

    def measure(self):
        self.prepare()
        names = list(self.tests)
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for name, wrong in zip(names, list(pool.map(self.run_test, names))):
                if wrong:
                    print(f"left out, since it fails without any fault: {wrong}")
                    del self.seconds[name]

    def prepare(self):
        self.stopped, self.processes = False, set()
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.temporary.mkdir()
        self.temporary.chmod(0o1777)

    def run_test(self, name):
        """What is wrong; empty if nothing, or if it is gone the second time."""
        limit = 20 + 6 * self.seconds.get(name, 60)
        for _ in range(2):
            begin = time.monotonic()
            wrong = "" if self.stopped else self.run_once(name, limit)
            if not wrong or time.monotonic() - begin > limit:
                break
        self.seconds.setdefault(name, time.monotonic() - begin)
        return wrong

    def run_once(self, name, limit):
        command, directory, environment = self.tests[name]
        variables = dict(os.environ, TMPDIR=str(self.temporary), HOME=str(self.temporary))
        variables.update(entry.split("=", 1) for entry in environment)
        as_nobody = {"user": 65534, "group": 65534, "extra_groups": []} if os.getuid() == 0 else {}
        process = subprocess.Popen(command, cwd=directory, env=variables, start_new_session=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, preexec_fn=set_limits, **as_nobody)
        self.processes.add(process)
        try:
            return "" if process.wait(limit) == 0 else name
        except subprocess.TimeoutExpired:
            return f"{name}, which takes too long"
        finally:
            kill(process)
            self.processes.discard(process)

    def noticed_by(self, folder):
        """The test that fails first; empty if none does. Those of the folder go first."""
        self.prepare()
        order = sorted(self.seconds, key=lambda name: (
            Path(self.tests[name][1]).name != folder, self.seconds[name]))
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            for future in concurrent.futures.as_completed(
                    [pool.submit(self.run_test, name) for name in order]):
                if future.result() and not self.stopped:
                    noticed, self.stopped = future.result(), True
                    for process in list(self.processes):
                        kill(process)
        return noticed if self.stopped else ""


def set_limits():
    resource.setrlimit(resource.RLIMIT_AS, (6 << 30, 6 << 30))
    resource.setrlimit(resource.RLIMIT_FSIZE, (2 << 30, 2 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def kill(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
