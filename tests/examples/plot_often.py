"""Runs examples/plot/plot.py once for each line of its standard input, a JSON list of the folder to run
in and the arguments, and answers with the exit code. What it prints is in the files "output" and
"errors" of the folder. Each run is a process of its own, which has imported already what takes longer
than to draw.
"""
import json
import os
import runpy
import sys

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot  # noqa: E402,F401
import pandas  # noqa: E402,F401

script = sys.argv[1]
for line in sys.stdin:
    folder, *arguments = json.loads(line)
    child = os.fork()
    if child == 0:
        os.chdir(folder)
        for name, stream in (("output", 1), ("errors", 2)):
            os.dup2(os.open(name, os.O_WRONLY | os.O_CREAT | os.O_TRUNC), stream)
        sys.argv[:] = [script, *arguments]
        runpy.run_path(script, run_name="__main__")
        sys.exit()
    print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), flush=True)
