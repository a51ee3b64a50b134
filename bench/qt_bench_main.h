// main() for a benchmark that draws through Qt: a QGuiApplication on the offscreen platform
// (a QApplication, through the second form, for one that shows widgets).
#pragma once

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdlib>

#define PLECTARO_QT_WIDGETS_BENCHMARK_MAIN(NAME, APP)                           \
  int main(int argc, char** argv) {                                            \
    if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1); \
    int qargc = 1;                                                             \
    char name[] = NAME;                                                        \
    char* qargv[] = {name, nullptr};                                           \
    APP app(qargc, qargv);                                                     \
    benchmark::Initialize(&argc, argv);                                        \
    benchmark::RunSpecifiedBenchmarks();                                       \
    benchmark::Shutdown();                                                     \
    return 0;                                                                  \
  }

#define PLECTARO_QT_BENCHMARK_MAIN(NAME) PLECTARO_QT_WIDGETS_BENCHMARK_MAIN(NAME, QGuiApplication)
