"""The table of the benchmarks says what was measured, in units for people, and tells gaps."""

import unittest

import performancetable as made


def entry(run_name, **values):
    return {"run_name": run_name, "aggregate_name": "median", "real_time": 2.0, "cpu_time": 1.0,
            "time_unit": "ms", **values}


ENDURANCE = """\
systems                                                  50 oscilloscope
process start until all are up                         2.90 s
ticks                                                 99.20 /s
share of a processor                                   18.7 %
processor, whole application                          21.45 s/min
samples sent                                         775832 
samples taken                                        775820 
samples left                                             10 
"""


class Medians(unittest.TestCase):
    def test_are_known_by_name_and_arguments_alone(self):
        for run_name, name in [("readPackets/aligned", "readPackets/aligned"),
                               ("exchange/real_time", "exchange"),
                               ("idleTick/systems:50/iterations:200/manual_time",
                                "idleTick/systems:50")]:
            with self.subTest(run_name):
                self.assertEqual(list(made.medians({"benchmarks": [entry(run_name)]})), [name])

    def test_have_all_times_in_seconds(self):
        for unit, second in [("ns", 1e-9), ("us", 1e-6), ("ms", 1e-3), ("s", 1.0)]:
            with self.subTest(unit):
                found = made.medians({"benchmarks": [entry("a", time_unit=unit)]})
                self.assertAlmostEqual(found["a"]["clock"], 2.0 * second)
                self.assertAlmostEqual(found["a"]["processor"], 1.0 * second)

    def test_are_taken_of_nothing_else(self):
        mean = entry("a", aggregate_name="mean")
        single = {"run_name": "a", "real_time": 1.0, "cpu_time": 1.0, "time_unit": "ms"}
        failed = entry("a", error_occurred=True)
        self.assertEqual(made.medians({"benchmarks": [mean, single, failed]}), {})


class Texts(unittest.TestCase):
    def test_tell_times_in_the_unit_that_fits(self):
        for seconds, text in [(4.01e-9, "4.01 ns"), (95.1e-6, "95.1 µs"), (1.5e-3, "1.50 ms"),
                              (0.113, "113 ms"), (2.566, "2.57 s"), (None, "not measured")]:
            with self.subTest(text):
                self.assertEqual(made.time_text(seconds), text)

    def test_tell_rates_in_the_unit_that_fits(self):
        for per_second, text in [(3686.4, "3,686/s"), (61.59e6, "61.6 million/s"),
                                 (None, "not measured")]:
            with self.subTest(text):
                self.assertEqual(made.rate_text(per_second), text)

    def test_tell_small_ratios_as_fractions(self):
        for figure, beside, text in [(3.0, 2.0, "1.50"), (1e6, 1.0, "1,000,000"),
                                     (1.0, 8.0, "0.12"), (1.0, 700.0, "1/700"), (None, 1.0, ""),
                                     (1.0, None, "")]:
            with self.subTest(text):
                self.assertEqual(made.ratio_text(figure, beside), text)


class Table(unittest.TestCase):
    def rows(self, found, first_paint=None, runs=()):
        return made.table(found, first_paint or {}, runs).splitlines()

    def test_puts_each_figure_beside_what_it_is_compared_with(self):
        found = {"appendToKeptPoints/points:4000": {"rate": 250e6},
                 "appendToVector/points:4000": {"rate": 62.5e6}}
        self.assertIn("| append to a curve, to 4,000 points | 4.00 ns | "
                      "to a plain vector: 16.0 ns | 0.25 |", self.rows(found))

    def test_takes_the_waits_off_the_time_of_one_system(self):
        found = {"storedSystems/systems:0": {"clock": 0.022},
                 "storedSystems/systems:1": {"clock": 2.321}}
        self.assertIn("| the same beyond these waits, clock | 49.0 ms | "
                      "waits that its flow names: 2.25 s | 1/45.9 |", self.rows(found))

    def test_says_what_was_not_measured(self):
        rows = self.rows({})
        self.assertTrue(all("not measured" in row for row in rows[2:]))
        self.assertTrue(all(row.count("|") == 5 for row in rows))

    def test_tells_a_run_of_the_whole_application(self):
        run = made.printed_figures(ENDURANCE)
        self.assertEqual(self.rows({}, runs=[run])[-1],
                         "| whole application, 50 systems, oscilloscope | 21.4 s/min; window's "
                         "thread 18.7 %; 99.2 ticks/s; 2 samples lost | general serial plotter, "
                         "one port: 42.9 s/min | 0.50 |")

    def test_tells_the_medians_of_runs_that_are_alike_and_all_their_losses(self):
        runs = [made.printed_figures(ENDURANCE.replace("21.45", cpu).replace("99.20", ticks))
                for cpu, ticks in [("30.00", "97.00"), ("10.00", "98.00"), ("20.00", "90.00")]]
        self.assertEqual(self.rows({}, runs=runs)[-1],
                         "| whole application, 50 systems, oscilloscope | 20.0 s/min; window's "
                         "thread 18.7 %; 97.0 ticks/s; 6 samples lost | general serial plotter, "
                         "one port: 42.9 s/min | 0.47 |")

    def test_keeps_runs_of_other_systems_and_modes_apart(self):
        runs = [made.printed_figures(ENDURANCE.replace("50 oscilloscope", kind))
                for kind in ("1 oscilloscope", "50 oscilloscope", "50 pointing")]
        self.assertEqual([row.split(" | ")[0] for row in self.rows({}, runs=runs)[-3:]],
                         ["| whole application, 1 system, oscilloscope",
                          "| whole application, 50 systems, oscilloscope",
                          "| whole application, 50 systems, pointing"])

    def test_tells_how_long_fifty_systems_take_beside_one(self):
        runs = [made.printed_figures(ENDURANCE),
                made.printed_figures(ENDURANCE.replace("50 osc", "1 osc").replace("2.90", "2.50"))]
        self.assertIn("| process start until fifty stored systems are up, clock | 2.90 s | "
                      "one: 2.50 s | 1.16 |", self.rows({}, runs=runs))

    def test_tells_the_first_painting(self):
        figures = made.printed_figures("process start to first paint      73.3 ms\n"
                                       "processor until first paint       60.9 ms\n")
        self.assertIn("| process start to first painting, empty setup file, clock | 73.3 ms | "
                      "processor time of it: 60.9 ms | 1.20 |", self.rows({}, figures))


if __name__ == "__main__":
    unittest.main()
