#include "gateway/python_interpreter.h"

#include "base/run_time_error.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

// A small engine stand-in written in Python, loaded the way the real one is.
const char* kProbeModule = R"(
import threading, time

class Probe:
    def __init__(self):
        self.ticks = 0
        self._thread = None

    def echo(self, *values):
        return list(values)

    def typeof(self, value):
        return type(value).__name__

    def big(self):
        return 2 ** 70

    def pair(self):
        return (1, "two", (3.5, None))

    def other(self):
        return {"a": 1}

    def fail(self):
        raise ValueError("no good")

    def start_ticking(self):
        def tick():
            while True:
                self.ticks += 1
                time.sleep(0.01)
        self._thread = threading.Thread(target=tick, daemon=True)
        self._thread.start()

    def get_ticks(self):
        return self.ticks
)";

class PythonGateway : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new QTemporaryDir;
        QFile module(dir_->path() + QStringLiteral("/gateway_probe.py"));
        ASSERT_TRUE(module.open(QIODevice::WriteOnly));
        module.write(kProbeModule);
    }
    static void TearDownTestSuite() { delete dir_; }

    PythonInterpreter probe{dir_->path(), QStringLiteral("gateway_probe"), QStringLiteral("Probe")};
    static QTemporaryDir* dir_;
};

QTemporaryDir* PythonGateway::dir_ = nullptr;

} // namespace

TEST_F(PythonGateway, VariantsCrossBothWaysKeepingTheirKinds) {
    const QVariantList nested = {
        QStringLiteral("Grüße"),
        42,
        2.5,
        true,
        QVariant(),
        QVariant(QVariantList{1, QVariant(QVariantList{QStringLiteral("x")})})};
    EXPECT_EQ(probe.call(QStringLiteral("echo"), nested).toList(), nested);
    // Booleans stay booleans and do not turn into numbers on the way.
    EXPECT_EQ(probe.call(QStringLiteral("typeof"), {true}).toString(), QStringLiteral("bool"));
    EXPECT_EQ(probe.call(QStringLiteral("typeof"), {qint64(1) << 40}).toString(),
              QStringLiteral("int"));
    EXPECT_EQ(probe.call(QStringLiteral("typeof"), {QVariant()}).toString(),
              QStringLiteral("NoneType"));
    EXPECT_EQ(probe.call(QStringLiteral("echo"), {true}).toList()[0].typeId(), QMetaType::Bool);
}

TEST_F(PythonGateway, PythonOnlyValuesArriveInTheNearestVariant) {
    EXPECT_EQ(probe.call(QStringLiteral("big")).typeId(), QMetaType::Double);
    const QVariantList pair = probe.call(QStringLiteral("pair")).toList();
    ASSERT_EQ(pair.size(), 3);
    EXPECT_EQ(pair[1].toString(), QStringLiteral("two"));
    EXPECT_TRUE(pair[2].toList()[1].isNull());
    EXPECT_EQ(probe.call(QStringLiteral("other")).toString(), QStringLiteral("{'a': 1}"));
}

TEST_F(PythonGateway, ARaisingMethodIsAnErrorOfTheCaller) {
    try {
        probe.call(QStringLiteral("fail"));
        FAIL() << "expected an error";
    } catch (const RunTimeError& e) {
        EXPECT_EQ(e.number(), RunTimeError::AutomationError);
        EXPECT_TRUE(e.description().contains(QStringLiteral("no good")));
    }
    EXPECT_THROW(probe.call(QStringLiteral("no_such_method")), RunTimeError);
    EXPECT_THROW(
        PythonInterpreter(dir_->path(), QStringLiteral("no_such_module"), QStringLiteral("X")),
        RunTimeError);
}

TEST_F(PythonGateway, EngineThreadsRunBetweenCalls) {
    probe.call(QStringLiteral("start_ticking"));
    const int before = probe.call(QStringLiteral("get_ticks")).toInt();
    // The thread ticks while no call is made, however slowly a busy machine lets it: the
    // limit only ends a wait that would never end.
    int ticks = before;
    for (int wait = 0; wait < 1000 && ticks <= before + 5; ++wait) {
        QThread::msleep(10);
        ticks = probe.call(QStringLiteral("get_ticks")).toInt();
    }
    EXPECT_GT(ticks, before + 5);
}
