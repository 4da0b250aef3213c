// Measures what the application spends its time on. Nothing is judged here: a table of the figures
// stands in docs/performance.md.

#include <QApplication>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>
#include <vector>

namespace {

/// What a run does unless its own arguments, which come later, say otherwise. The benchmarks take
/// turns, so that a busy minute of the machine falls on all alike.
const char* const defaultArguments[] = {"--benchmark_repetitions=5",
                                        "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_report_aggregates_only=true"};

std::vector<char*> withDefaults(int argc, char** argv)
{
    std::vector<char*> arguments{argv[0]};
    for (const char* argument : defaultArguments)
        arguments.push_back(const_cast<char*>(argument));
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    arguments.push_back(nullptr);
    return arguments;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("LC_NUMERIC", "C");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false\ndefault.info=false"));

    std::vector<char*> arguments = withDefaults(argc, argv);
    int count = int(arguments.size()) - 1;
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
