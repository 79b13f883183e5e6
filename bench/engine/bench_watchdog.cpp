// How long runaway user code goes on after the watchdog's limit: from the
// limit to the user's message (the popup record), for every way of catching
// the stop, with the compiled guard (as the program runs) and in pure Python.
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kLimitSeconds = 0.2;

struct Runaway {
    const char* name;
    const char* source;
};

const std::vector<Runaway> kRunaways = {
    {"TightLoop", "while True: pass\n"},
    {"RecursionUnderExceptException",
     "def f(): f()\nwhile True:\n    try:\n        f()\n    except Exception:\n        pass\n"},
    {"RecursionUnderExceptRecursionError", "def f(): f()\nwhile True:\n    try:\n        f()\n    "
                                           "except RecursionError:\n        pass\n"},
    {"RecursionInsideItsOwnHandler",
     "def f():\n    try:\n        f()\n    except BaseException:\n        f()\nf()\n"},
    {"BareExceptInALoop",
     "while True:\n    try:\n        while True: pass\n    except:\n        pass\n"},
    {"FinallyThatLoops",
     "while True:\n    try:\n        while True: pass\n    finally:\n        while True: pass\n"},
    {"StopKeptAliveInAList", "kept = []\nwhile True:\n    try:\n        while True: pass\n"
                             "    except BaseException as e:\n        kept.append(e)\n"},
    {"GeneratorThatSwallows",
     "def swallow():\n    while True:\n        try:\n            yield\n"
     "        except BaseException:\n            pass\nwhile True:\n    try:\n"
     "        for _ in swallow(): pass\n    except BaseException:\n        pass\n"},
    {"WithBlockThatSwallows", "class Swallow:\n    def __enter__(self): return self\n"
                              "    def __exit__(self, *exc): return True\nwhile True:\n"
                              "    with Swallow():\n        while True: pass\n"},
    {"LibrarySuppress", "import contextlib\nwhile True:\n"
                        "    with contextlib.suppress(BaseException):\n        while True: pass\n"},
    {"CodeGivenToExec", "exec('while True:\\n    try: pass\\n    except: pass\\n')\n"},
    {"DelThatSwallows", "class Stubborn:\n    def __del__(self):\n        try:\n"
                        "            while True: pass\n        except BaseException:\n"
                        "            pass\nwhile True:\n    try:\n        Stubborn()\n"
                        "    except BaseException:\n        pass\n"},
};

std::unique_ptr<vessa::Interpreter> makeEngine(vessa::InterpreterRegistry& registry) {
    auto engine = registry.create(vessa::kEngineProgId);
    engine->call(QStringLiteral("SetWatchdogSeconds"), {kLimitSeconds});
    return engine;
}

// The engines, made once: the second without the compiled guard, as a build
// without it would run (the switch is the engine's own, before it is made).
struct Engines {
    vessa::InterpreterRegistry registry;
    std::unique_ptr<vessa::Interpreter> compiled;
    std::unique_ptr<vessa::Interpreter> purePython;

    Engines() {
        vessa::registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
        compiled = makeEngine(registry);
        compiled->call(QStringLiteral("SetWorldTrusted"), {1});
        compiled->call(QStringLiteral("ExecuteCode"),
                       {QStringLiteral("import vessa.native\nvessa.native.guard = None\n"),
                        QStringLiteral("<Tool>"), QStringLiteral("exec")});
        purePython = makeEngine(registry);
        compiled->call(QStringLiteral("SetWorldTrusted"), {0});
    }
};

Engines& engines() {
    static Engines made;
    return made;
}

bool toldTheUser(vessa::Interpreter& engine) {
    engine.call(QStringLiteral("flushout"));
    const QVariantList records = engine.call(QStringLiteral("PollForMiscDifferences")).toList();
    for (const QVariant& record : records) {
        const QVariantList fields = record.toList();
        if (!fields.isEmpty() && fields[0].toString() == QStringLiteral("popuperrordialog"))
            return fields.value(1).toString().startsWith(QStringLiteral("Your code took too long"));
    }
    return false;
}

// One iteration: the runaway code from the call to its message, less the limit.
void BM_FromLimitToMessage(benchmark::State& state, const Runaway& runaway, bool pure) {
    Engines& made = engines();
    vessa::Interpreter& engine = pure ? *made.purePython : *made.compiled;
    const QVariantList args = {QString::fromUtf8(runaway.source), QStringLiteral("<Script Text>"),
                               QStringLiteral("exec")};
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        engine.call(QStringLiteral("ExecuteCode"), args);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        if (!toldTheUser(engine)) {
            state.SkipWithError("the runaway code was not stopped and told");
            break;
        }
        state.SetIterationTime(taken.count() - kLimitSeconds);
    }
}

const bool kRegistered = [] {
    for (const Runaway& runaway : kRunaways) {
        for (const bool pure : {false, true}) {
            const std::string name = std::string("BM_FromLimitToMessage/") + runaway.name +
                                     (pure ? "/PurePython" : "/Compiled");
            benchmark::RegisterBenchmark(name.c_str(), BM_FromLimitToMessage, runaway, pure)
                ->UseManualTime()
                ->Iterations(1)
                ->Repetitions(7)
                ->ReportAggregatesOnly(true)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

} // namespace

BENCHMARK_MAIN();
