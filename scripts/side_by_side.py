"""Runs commands with svn and with tessera side by side, for the benchmark scripts.

compare() runs every case with every program REPETITIONS times, each repetition in
random order, and prints the medians of the wall time, the child's processor time
and its peak memory, and the ratios tessera / svn.
"""
import os
import random
import statistics
import subprocess
import sys
import time


def compare(programs, cases, repetitions, cwd, config, prepare=None):
    """programs: name -> executable; cases: name -> arguments after the program, or
    (arguments, directory) for a case that runs elsewhere than in cwd.

    prepare(case), when given, runs before each run of a case and is not timed.
    """
    times = {(case, name): [] for case in cases for name in programs}
    for _ in range(repetitions):
        runs = [(case, name) for case in cases for name in programs]
        random.shuffle(runs)
        for case, name in runs:
            if prepare:
                prepare(case)
            arguments, directory = cases[case] if isinstance(cases[case], tuple) else (cases[case], cwd)
            start = time.monotonic()
            child = subprocess.Popen([programs[name], "--config-dir", config, "--non-interactive"] + arguments,
                                     cwd=directory, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
            _, status, usage = os.wait4(child.pid, 0)
            if os.waitstatus_to_exitcode(status) != 0:
                sys.exit(f"{name} {' '.join(arguments)} failed")
            times[case, name].append((time.monotonic() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss))

    print(f"medians of {repetitions}: wall s, cpu s, peak KiB; ratio tessera / svn (wall, cpu)")
    width = max(len(case) for case in cases)
    for case in cases:
        medians = {name: [statistics.median(run[i] for run in times[case, name]) for i in range(3)]
                   for name in programs}
        svn, ours = medians["svn"], medians["tessera"]
        print(f"{case:{width}} svn {svn[0]:7.3f} {svn[1]:7.3f} {svn[2]:8.0f}   tessera {ours[0]:7.3f} {ours[1]:7.3f} "
              f"{ours[2]:8.0f}   ratio {ours[0] / svn[0]:.2f} {ours[1] / svn[1]:.2f}")
