#!/usr/bin/python3
"""Makes one table of what the benchmarks have measured.

Usage: performancetable.py BENCHMARKS FIRSTPAINT ENDURANCE...

BENCHMARKS is what lumetra-bench writes as JSON, with medians of repetitions. The other files hold
the lines that lumetra-firstpaint and lumetra-endurance print; several runs of lumetra-endurance
with the same systems make one row of their medians. The table is Markdown, and each of
its rows has beside the figure what gives it its meaning, measured in the same run unless it is a
limit. Times are those of the processor, unless "clock" stands there. What is missing, since its
benchmark failed, is told as such.
"""

import json
import pathlib
import re
import statistics
import sys

SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
TIMES = [(1.0, "s", 1.0), (1e-3, "ms", 1e3), (1e-6, "µs", 1e6), (0.0, "ns", 1e9)]
RATES = [(1e6, " million/s", 1e-6), (0.0, "/s", 1.0)]

# A byte takes ten bits on the line.
LINE_PACKETS_PER_S = 921600 / 10 / 25
PACKETS_OF_FIFTY_PER_S = 50 * 500
TICK_PERIOD_S = 0.01
# Two stops of an idle controller, each of which waits 1.5 times 750 ms for a reply.
CONNECTING_WAITS_S = 2 * 1.5 * 0.75
# A general serial plotter that shows one port, measured before on the same machine.
SERIAL_PLOTTER_S_PER_MIN = 42.9

MISSING = "not measured"
HEAD = "| what | figure | beside it | ratio |\n|---|---|---|---|"


def base_name(run_name):
    """A benchmark's name and arguments, without the way in which it was measured."""
    return re.sub(r"/(real_time|manual_time|iterations:\d+)", "", run_name)


def medians(report):
    """The medians of a report of lumetra-bench by name, with all times in seconds."""
    found = {}
    for entry in report["benchmarks"]:
        if entry.get("aggregate_name") != "median" or entry.get("error_occurred"):
            continue
        second = SECONDS[entry["time_unit"]]
        median = {"clock": entry["real_time"] * second, "processor": entry["cpu_time"] * second}
        if "items_per_second" in entry:
            median["rate"] = entry["items_per_second"]
        if "leaving_ms" in entry:
            median["leaving"] = entry["leaving_ms"] * SECONDS["ms"]
        found[base_name(entry["run_name"])] = median
    return found


def printed_figures(text):
    """The lines "what  value unit" as a dictionary from what to (value, unit)."""
    figures = {}
    for line in text.splitlines():
        match = re.fullmatch(r"(\S.*?) {2,}(-?[\d.]+) ?(.*)", line)
        if match:
            figures[match[1]] = (float(match[2]), match[3].strip())
    return figures


def scaled(value, steps):
    for smallest, unit, factor in steps:
        if value >= smallest:
            number = value * factor
            return f"{number:,.{decimals(number)}f}{unit if unit[0] in ' /' else ' ' + unit}"
    raise ValueError(value)


def decimals(number):
    """Three digits, or all before the point."""
    return 0 if number >= 100 else 1 if number >= 10 else 2


def time_text(seconds):
    return MISSING if seconds is None else scaled(seconds, TIMES)


def rate_text(per_second):
    return MISSING if per_second is None else scaled(per_second, RATES)


def ratio_text(figure, beside):
    if figure is None or not beside:
        return ""
    ratio = figure / beside
    if ratio < 0.1:
        return "1/" + ratio_text(beside, figure)
    return f"{ratio:,.{decimals(ratio)}f}"


def row(what, figure, beside, ratio):
    return f"| {what} | {figure} | {beside} | {ratio} |"


def time_row(what, figure, beside_what, beside):
    return row(what, time_text(figure), f"{beside_what}: {time_text(beside)}",
               ratio_text(figure, beside))


def rate_row(what, figure, beside_what, beside):
    return row(what, rate_text(figure), f"{beside_what}: {rate_text(beside)}",
               ratio_text(figure, beside))


def difference(minuend, *subtrahends):
    if minuend is None or None in subtrahends:
        return None
    return minuend - sum(subtrahends)


def benchmark_rows(found):
    """The rows of lumetra-bench, from what `medians` returns."""
    def value(name, kind):
        return found.get(name, {}).get(kind)

    def each(name):
        rate = value(name, "rate")
        return None if rate is None else 1 / rate

    def tick(history):
        return value(f"tickOfSixPlots/systems:1/history:{history}", "processor")

    def ordinary(history):
        return value(f"ordinaryTickOfSixPlots/systems:1/history:{history}", "processor")

    def stored(systems, kind="clock"):
        return value(f"storedSystems/systems:{systems}", kind)

    long_run = 1000000
    aligned = value("readPackets/aligned", "rate")
    lost = value("readPackets/lostBytes", "rate")
    lines = value("recordLines/lengths:0", "rate")
    beyond = difference(stored(1), stored(0))
    return [
        time_row("tick of six plots, no history", tick(0), "ordinary drawing", ordinary(0)),
        time_row("the same, 1,000,000 points in both pointing plots", tick(long_run),
                 "ordinary drawing", ordinary(long_run)),
        time_row("the same", tick(long_run), "no history", tick(0)),
        time_row("append to a curve, to 4,000 points", each("appendToKeptPoints/points:4000"),
                 "to a plain vector", each("appendToVector/points:4000")),
        time_row("append to a curve, to 1,000,000 points, whose memory comes from the system",
                 each("appendToKeptPoints/points:1000000"), "to a plain vector",
                 each("appendToVector/points:1000000")),
        rate_row("packets read, aligned", aligned, "a line at 921,600 baud", LINE_PACKETS_PER_S),
        rate_row("the same", aligned, "load of fifty systems", PACKETS_OF_FIFTY_PER_S),
        rate_row("packets read, a byte lost in every hundredth", lost, "aligned", aligned),
        rate_row("the same", lost, "load of fifty systems", PACKETS_OF_FIFTY_PER_S),
        rate_row("lines of a recording formed", lines, "by snprintf and a text stream",
                 value("recordLinesPrinted/lengths:0", "rate")),
        rate_row("the same", lines, "memory copy of the same bytes",
                 value("recordLinesCopied/lengths:0", "rate")),
        time_row("exchange with an emulator that answers at once, clock",
                 value("exchangeOfTheApplication", "clock"), "over a bare socket",
                 value("exchangeOfABareSocket", "clock")),
        time_row("status of fifty idle systems, a tick and its painting, clock",
                 value("idleTick/systems:50", "clock"), "period of the tick", TICK_PERIOD_S),
        time_row("one stored system up, beyond the making of the window, clock", beyond,
                 "waits that its flow names", CONNECTING_WAITS_S),
        time_row("the same beyond these waits, clock", difference(beyond, CONNECTING_WAITS_S),
                 "waits that its flow names", CONNECTING_WAITS_S),
        time_row("fifty stored systems up, with the window, clock", stored(50), "one",
                 stored(1)),
        time_row("fifty stored systems leaving, clock", stored(50, "leaving"), "one",
                 stored(1, "leaving")),
    ]


def first_paint_row(figures):
    took, _ = figures.get("process start to first paint", (None, ""))
    cpu, _ = figures.get("processor until first paint", (None, ""))
    in_seconds = [None if ms is None else ms * SECONDS["ms"] for ms in (took, cpu)]
    return time_row("process start to first painting, empty setup file, clock", in_seconds[0],
                    "processor time of it", in_seconds[1])


def alike(runs):
    """The runs of the whole application by systems and mode, in the order of the first ones."""
    groups = {}
    for figures in runs:
        groups.setdefault(figures.get("systems"), []).append(figures)
    return groups


def median_of(runs, what):
    return statistics.median(figures[what][0] for figures in runs)


def endurance_row(kind, runs):
    """Runs of the whole application. Samples that were left waiting are not lost."""
    if kind is None:
        return row("whole application", MISSING, "", "")
    systems, mode = kind
    cpu = median_of(runs, "processor, whole application")
    share = median_of(runs, "share of a processor")
    ticks = median_of(runs, "ticks")
    sent, taken, left = (sum(figures[f"samples {what}"][0] for figures in runs)
                         for what in ("sent", "taken", "left"))
    lost = sent - taken - left
    what = f"whole application, {systems:.0f} {'system' if systems == 1 else 'systems'}, {mode}"
    figure = (f"{cpu:.1f} s/min; window's thread {share:.1f} %; {ticks:.1f} ticks/s; "
              f"{lost:,.0f} samples lost")
    return row(what, figure, f"general serial plotter, one port: {SERIAL_PLOTTER_S_PER_MIN} s/min",
               ratio_text(cpu, SERIAL_PLOTTER_S_PER_MIN))


def arrival_row(groups):
    """From the start of the process on, with the setup file that the window finds."""
    def up(systems):
        runs = [run for kind, alikes in groups.items() if kind and kind[0] == systems
                for run in alikes]
        return median_of(runs, "process start until all are up") if runs else None

    return time_row("process start until fifty stored systems are up, clock", up(50), "one", up(1))


def table(found, first_paint, endurance_runs):
    groups = alike(endurance_runs)
    rows = benchmark_rows(found)
    rows.append(first_paint_row(first_paint))
    rows.append(arrival_row(groups))
    rows += [endurance_row(kind, runs) for kind, runs in groups.items()]
    return "\n".join([HEAD, *rows, ""])


def main(arguments):
    if len(arguments) < 2:
        sys.exit(__doc__)
    texts = [pathlib.Path(path).read_text(encoding="utf-8") for path in arguments]
    report, first_paint, *runs = texts
    sys.stdout.write(table(medians(json.loads(report)), printed_figures(first_paint),
                           [printed_figures(run) for run in runs]))


if __name__ == "__main__":
    main(sys.argv[1:])
