#!/usr/bin/env python3
"""Whole-process cost of toolbase commands, as ratios to /bin/true.

Every round runs each command once, in turn, so that the machine's load
falls on all of them alike; the figures are medians over the rounds.

  bench/startup.py                  # default host, the command set below
  bench/startup.py --scale 1000,10000,100000
                                    # hosts grown by that many port groups
Options: --rounds N (default 40), --build DIR (default build), --compare DIR
(another build, e.g. an older one, timed in the same rounds). Each line has
the command's median, its ratio to the median of /bin/true, and the median
of its ratios to /bin/true round by round.
"""
import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

DEFAULT_COMMANDS = [
    ["--help"],
    ["--list-commands"],
    ["network", "--help"],
    ["network", "firewall", "get"],
    ["network", "ip", "get"],
    ["network", "nic", "list"],
    ["network", "ip", "interface", "list"],
    ["network", "ip", "route", "ipv4", "list"],
    ["network", "vswitch", "standard", "list"],
    ["network", "vswitch", "standard", "portgroup", "list"],
    ["network", "vswitch", "dvs", "corvane", "list"],
    ["network", "vswitch", "standard", "policy", "failover", "get", "-v", "vSwitch0"],
    ["network", "nic", "stats", "get", "-n", "ornic0"],
    ["--formatter", "json", "network", "nic", "list"],
]


def run_once(argv, env):
    if callable(argv):
        argv = argv()
    start = time.perf_counter_ns()
    pid = os.posix_spawn(argv[0], argv, env, file_actions=[
        (os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0),
        (os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)])
    _, status = os.waitpid(pid, 0)
    elapsed = time.perf_counter_ns() - start
    if status != 0:
        sys.exit("failed: " + " ".join(argv))
    return elapsed


def interleave(commands, rounds, env):
    """commands: list of (label, argv, env or None); the times in ns of every
    round by label."""
    times = {label: [] for label, _, _ in commands}
    for label, argv, own_env in commands:  # warm the page cache
        run_once(argv, own_env or env)
    for _ in range(rounds):
        for label, argv, own_env in commands:
            times[label].append(run_once(argv, own_env or env))
    return times


def report(times, base="/bin/true"):
    """Each command's median time, its ratio to the base's median, and the
    median of its ratios to the base round by round (which a drift of the
    machine's speed over the run moves less)."""
    medians = {label: statistics.median(values) for label, values in times.items()}
    unit = medians[base]
    width = max(len(label) for label in medians)
    print(f"{'':<{width}}  {'median':>12}  {'ratio':>7}  {'by round':>8}")
    for label, value in medians.items():
        paired = statistics.median(t / b for t, b in zip(times[label], times[base]))
        print(f"{label:<{width}}  {value / 1000:9.0f} us  {value / unit:6.2f} x  {paired:7.2f} x")


def grow_host(toolbase, path, count, env):
    """A default host whose vSwitch1 has `count` more port groups."""
    subprocess.run([toolbase, "network", "firewall", "get"], env=env, check=True,
                   stdout=subprocess.DEVNULL)
    with open(path) as file:
        head = file.readline()
        file.seek(0)
        document = json.load(file)
    host = document["host"]
    switch = next(s for s in host["vswitch"]["standard_switches"] if s["name"] == "vSwitch1")
    model = switch["port_groups"][0]
    for i in range(count):
        group = dict(model)
        group["name"] = f"bench-pg-{i}"
        group["vlan_id"] = i % 4095
        switch["port_groups"].append(group)
    # The records copied are as the library writes them: the head (which
    # says so) stays.
    lines = [json.dumps(key) + ":" + json.dumps(value, separators=(",", ":"), ensure_ascii=False)
             for key, value in host.items()]
    with open(path, "w") as file:
        file.write(head + ",\n".join(lines) + "\n}}\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--rounds", type=int, default=40)
    parser.add_argument("--build", default="build")
    parser.add_argument("--scale", help="comma-separated port group counts")
    parser.add_argument("--compare", help="another build folder, timed in the same rounds")
    args = parser.parse_args()
    toolbase = os.path.abspath(os.path.join(args.build, "toolbase"))
    work = tempfile.mkdtemp(prefix="toolbase-startup-")
    try:
        env = dict(os.environ, TOOLBASE_HOST_STATE=os.path.join(work, "default.json"))
        commands = [("/bin/true", ["/bin/true"], None)]
        ip = shutil.which("ip")
        if ip:
            commands.append(("ip -j route show", [ip, "-j", "route", "show"], None))
        if not args.scale:
            builds = [("", toolbase)]
            if args.compare:
                builds.append(("[other] ", os.path.abspath(os.path.join(args.compare, "toolbase"))))
            for words in DEFAULT_COMMANDS:
                for tag, program in builds:
                    build_env = dict(env, TOOLBASE_HOST_STATE=os.path.join(work, tag + "default.json"))
                    if len(commands) < 2 + len(builds):
                        subprocess.run([program, "network", "firewall", "get"], env=build_env,
                                       check=True, stdout=subprocess.DEVNULL)
                    commands.append((tag + " ".join(words), [program] + words, build_env))
            report(interleave(commands, args.rounds, env))
            return
        counts = [0] + [int(n) for n in args.scale.split(",")]
        serial = iter(range(10**9))
        for count in counts:
            path = os.path.join(work, f"host-{count}.json")
            host_env = dict(os.environ, TOOLBASE_HOST_STATE=path)
            grow_host(toolbase, path, count, host_env)
            size = os.path.getsize(path) // 1024
            commands.append((f"{count:>6} pg ({size} KiB): firewall get",
                             [toolbase, "network", "firewall", "get"], host_env))
            commands.append((f"{count:>6} pg: portgroup list",
                             [toolbase, "network", "vswitch", "standard", "portgroup", "list"],
                             host_env))
            # Each add names a new port group; the host grows by one per run.
            def add(toolbase=toolbase):
                return [toolbase, "network", "vswitch", "standard", "portgroup", "add",
                        "-v", "vSwitch0", "-p", f"bench-add-{next(serial)}"]
            commands.append((f"{count:>6} pg: portgroup add", add, host_env))
        report(interleave(commands, args.rounds, env))
    finally:
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
