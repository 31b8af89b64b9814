#!/usr/bin/env python3
"""Start-up, memory and idle cost of the program, against a bare window of the same size and toolkit.

    bench/startup_bench.py [BUILD_FOLDER] [--runs N] [--idle SECONDS]

Prints medians, and ends with status 1 when a limit is exceeded. The first frame is the window, its grounds and its
buttons; the full frame shows all that is in it. The build folder is build/release unless given; it must hold the
targets vantrel, bare_window, first_frame and demo_phone. The two programs take turns, so that whatever else the machine
does hits both alike. Without a display they run under Xvfb, or offscreen when that is missing; always without a session
bus, which would answer in its own time.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

MAXIMUM_RATIO = 1.5
MAXIMUM_EXTRA_MEMORY = 30  # MB
MAXIMUM_IDLE_LOAD = 1.0  # percent of one core


def environment(build, folder):
    variables = dict(os.environ)
    for name in ("HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"):
        variables[name] = folder
    variables.update(
        DBUS_SESSION_BUS_ADDRESS="disabled:",
        DO_NOT_TRACK="1",
        QT_PLUGIN_PATH=str(build / "bench" / "plugins"),
        QT_QPA_GENERIC_PLUGINS="firstframe",
        VANTREL_FIRST_FRAME=folder + "/frames",
        VANTREL_FULL_FRAME_SHOWS="content",
        VANTREL_RESOURCES=str(build / "demo"),
        DEMO_PHONE_ROOT=folder + "/phone",
    )
    return variables


@contextlib.contextmanager
def display(variables):
    """Makes sure that the variables name a display."""
    if variables.get("DISPLAY") or variables.get("WAYLAND_DISPLAY") or variables.get("QT_QPA_PLATFORM"):
        yield
        return
    if not shutil.which("Xvfb"):
        variables["QT_QPA_PLATFORM"] = "offscreen"
        yield
        return
    ours, theirs = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(theirs), "-screen", "0", "1920x1200x24"],
                              pass_fds=[theirs], stderr=subprocess.DEVNULL)
    os.close(theirs)
    with os.fdopen(ours) as number:
        variables["DISPLAY"] = ":" + number.readline().strip()
    try:
        yield
    finally:
        server.terminate()
        server.wait(10)


def start(program, variables):
    """Seconds to the first and to the full frame, and the peak memory in MB a second later, when the phone is there.
    A program without content has one frame, which counts as both."""
    variables = dict(variables, VANTREL_QUIT_AFTER="1000")
    frames = pathlib.Path(variables["VANTREL_FIRST_FRAME"])
    frames.unlink(missing_ok=True)
    time.sleep(0.3)  # the display and the tools are done with the run before
    begin = time.clock_gettime(time.CLOCK_MONOTONIC)
    process = subprocess.Popen([program], env=variables, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0 or not frames.exists():
        sys.exit(f"{program} ended with status {process.returncode} or without a frame")
    times = [float(line) - begin for line in frames.read_text().split()]
    return times[0], times[-1], usage.ru_maxrss / 1024


def cpu_seconds(pid):
    """Processor time of a process and of its children that have ended."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return sum(int(value) for value in fields[11:15]) / os.sysconf("SC_CLK_TCK")


def idle_load(program, variables, seconds):
    """Percent of one core while nothing happens but the looks at the phone, adb included."""
    process = subprocess.Popen([program], env=variables, stderr=subprocess.DEVNULL)
    try:
        time.sleep(5)  # start-up is over
        begin, before = time.monotonic(), cpu_seconds(process.pid)
        time.sleep(seconds)
        return 100 * (cpu_seconds(process.pid) - before) / (time.monotonic() - begin)
    finally:
        process.terminate()
        process.wait(10)


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    arguments.add_argument("build", nargs="?", type=pathlib.Path, default=pathlib.Path("build/release"))
    arguments.add_argument("--runs", type=int, default=25)
    arguments.add_argument("--idle", type=float, default=30, metavar="SECONDS")
    options = arguments.parse_args()
    build = options.build.resolve()
    ours, bare = str(build / "src/App/vantrel"), str(build / "bench/bare_window")

    # In memory, where a desktop has its folder for sockets and locks.
    with tempfile.TemporaryDirectory(dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as folder:
        variables = environment(build, folder)
        with display(variables):
            start(ours, variables), start(bare, variables)  # warms the disk cache and furnishes the phone
            runs = [(start(ours, variables), start(bare, variables)) for _ in range(options.runs)]
            load = idle_load(ours, variables, options.idle)

    def median(program, value):
        return statistics.median(run[program][value] for run in runs)

    def ratio(value):
        return median(0, value) / median(1, value)

    extra = median(0, 2) - median(1, 2)
    frames = [(f"{median(0, value) * 1000:.0f} ms", f"{median(1, value) * 1000:.0f} ms", f"x {ratio(value):.2f}")
              for value in (0, 1)]
    rows = [
        ("first frame", *frames[0], f"x {MAXIMUM_RATIO}", ratio(0) <= MAXIMUM_RATIO),
        ("full frame", *frames[1], "", True),
        ("peak memory", f"{median(0, 2):.1f} MB", f"{median(1, 2):.1f} MB", f"+ {extra:.1f} MB",
         f"+ {MAXIMUM_EXTRA_MEMORY} MB", extra <= MAXIMUM_EXTRA_MEMORY),
        ("idle, phone connected", f"{load:.2f} %", "", f"{load:.2f} %", f"{MAXIMUM_IDLE_LOAD} %",
         load < MAXIMUM_IDLE_LOAD),
    ]
    print(f"medians of {options.runs} runs, {os.cpu_count()} cores")
    print(f"{'':24}{'vantrel':>12}{'bare':>12}{'cost':>14}{'limit':>12}")
    for name, first, second, cost, limit, holds in rows:
        print(f"{name:24}{first:>12}{second:>12}{cost:>14}{limit:>12}{'' if holds else '   EXCEEDED'}")
    return 0 if all(row[-1] for row in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
