#include "base/run_time_error.h"
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

using namespace vessa;

// The real engine behind the real gateway: what the main loop sees of user code.

namespace {

class EngineThroughGateway : public ::testing::Test {
protected:
    EngineThroughGateway() {
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine = registry.create(kEngineProgId);
    }

    QVariant run(const QString& code, const QString& tag, const QString& mode) {
        return engine->call(QStringLiteral("ExecuteCode"), {code, tag, mode});
    }

    // The records of one round: flush, then the misc poll.
    QList<QVariantList> poll() {
        engine->call(QStringLiteral("flushout"));
        QList<QVariantList> records;
        for (const QVariant& r : engine->call(QStringLiteral("PollForMiscDifferences")).toList())
            records.append(r.toList());
        return records;
    }

    static QVariantList firstWithTag(const QList<QVariantList>& records, const QString& tag) {
        for (const QVariantList& r : records)
            if (r.value(0).toString() == tag)
                return r;
        return {};
    }

    std::unique_ptr<Interpreter> engine;
};

} // namespace

TEST_F(EngineThroughGateway, AnEndlessLoopIsStoppedAndTheEngineStaysUsable) {
    engine->call(QStringLiteral("SetWatchdogSeconds"), {0.5});
    QElapsedTimer clock;
    clock.start();
    const QVariant result = run(QStringLiteral("x = 0\nwhile True:\n    x += 1\n"),
                                QStringLiteral("<Script Text>"), QStringLiteral("exec"));
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_TRUE(result.isNull() || result.toString().isEmpty());
    const QVariantList dialog = firstWithTag(poll(), QStringLiteral("popuperrordialog"));
    ASSERT_EQ(dialog.size(), 3);
    EXPECT_TRUE(dialog[1].toString().contains(QStringLiteral("too long")));
    EXPECT_EQ(dialog[2].toString(), QStringLiteral("3"));

    run(QStringLiteral("1 + 1"), QStringLiteral("<Command Line>"), QStringLiteral("single"));
    EXPECT_EQ(firstWithTag(poll(), QStringLiteral("output")).value(1).toString(),
              QStringLiteral("2\n"));
}

TEST_F(EngineThroughGateway, FrontEndStatementsReportFailureAsTheResult) {
    EXPECT_TRUE(
        run(QStringLiteral("import __builtin__"), QStringLiteral("<Init>"), QStringLiteral("exec"))
            .toString()
            .isEmpty());
    EXPECT_FALSE(
        run(QStringLiteral("no_such_name"), QStringLiteral("<Tool>"), QStringLiteral("exec"))
            .toString()
            .isEmpty());
}

TEST_F(EngineThroughGateway, AMegabyteOfOutputArrivesWhole) {
    run(QStringLiteral("print('x' * 1000000)"), QStringLiteral("<Command Line>"),
        QStringLiteral("single"));
    qsizetype received = 0;
    for (const QVariantList& r : poll())
        if (r.value(0).toString() == QStringLiteral("output"))
            received += r.value(1).toString().size();
    EXPECT_EQ(received, 1000001);
}
