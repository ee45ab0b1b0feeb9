#pragma once

// The main function of the library's benchmarks: a Qt application object
// (widgets on the offscreen platform unless another one is asked for) around
// Google Benchmark's own run.

#include <QApplication>
#include <benchmark/benchmark.h>

#define OXA_BENCHMARK_MAIN() \
    int main(int argc, char **argv) \
    { \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) \
            qputenv("QT_QPA_PLATFORM", "offscreen"); \
        QApplication app(argc, argv); \
        benchmark::Initialize(&argc, argv); \
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) \
            return 1; \
        benchmark::RunSpecifiedBenchmarks(); \
        benchmark::Shutdown(); \
        return 0; \
    }
