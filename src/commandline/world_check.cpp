#include "commandline/world_check.h"

#include "gateway/engine_link.h"
#include "world/python_generator.h"
#include "world/script_run.h"
#include "world/standalone_script.h"
#include "world/world_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>

namespace vessa {

namespace {

// How often the world's time is stepped: as often as a camera view is drawn.
constexpr double StepSeconds = 1.0 / 30;

// What a run's records tell of the user's errors. A failure comes as an "error" record
// whose traceback names the source and line (`File "<treeview>", line 5`), then a
// "popuperrordialog" with the message and the line.
class ErrorRecords {
public:
    ErrorRecords(WorldReport& report, int handEditedLine)
        : report_(report), handEditedLine_(handEditedLine) {}

    void take(const QVariant& records) {
        for (const QVariant& record : records.toList()) {
            const QVariantList items = record.toList();
            const QString tag = items.value(0).toString();
            if (tag == QLatin1String("error"))
                rememberPlace(items.value(1).toString());
            else if (tag == QLatin1String("popuperrordialog"))
                addError(items.value(1).toString(), items.value(2));
        }
    }

private:
    void rememberPlace(const QString& traceback) {
        static const QRegularExpression place(QStringLiteral("File \"(<[^\"]+>)\", line (\\d+)"));
        source_.clear();
        for (const QRegularExpressionMatch& match : place.globalMatch(traceback))
            source_ = match.captured(1);
    }

    void addError(const QString& message, const QVariant& detail) {
        QString source = source_;
        int line = 0;
        if (detail.typeId() == QMetaType::QVariantList) {
            // A syntax error: [message, [source, line, offset, text]].
            const QVariantList where = detail.toList().value(1).toList();
            source = where.value(0).toString();
            line = where.value(1).toInt();
        } else {
            line = detail.toString().toInt();
        }
        source_.clear();
        // Lines count from 1 at the first line of the part that was run.
        int fileLine = 0;
        if (line > 0 && source == kGeneratedSourceTag)
            fileLine = line;
        else if (line > 0 && source == kHandEditedSourceTag)
            fileLine = handEditedLine_ + line;
        report_.errors.append({world_files::Python, fileLine, message});
    }

    WorldReport& report_;
    int handEditedLine_;
    QString source_; // of the last error record, until its popup comes
};

// "World_Scene.py line 3: what is wrong" as the engine refuses a scene file.
WorldError sceneError(const QString& failure) {
    static const QRegularExpression withLine(QStringLiteral("^(\\S+) line (\\d+): (.*)$"),
                                             QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = withLine.match(failure.trimmed());
    if (match.hasMatch())
        return {match.captured(1), match.captured(2).toInt(), match.captured(3)};
    return {world_files::Scene, 0, failure.trimmed()};
}

bool failed(const QVariant& result) {
    return !isSuccessResult(result);
}

} // namespace

WorldReport WorldChecker::check(const QString& world) {
    WorldReport report;
    report.world = world;
    if (!isWorldFolder(world)) {
        report.errors.append({world, 0, notAWorldMessage(world)});
        return report;
    }
    const QString folder = QFileInfo(world).absoluteFilePath();
    // What the world before left in the queues is not this world's.
    engine_.call(QStringLiteral("flushout"));
    engine_.call(QStringLiteral("PollForMiscDifferences"));
    engine_.call(QStringLiteral("PollForTreeDifferences"));

    const QVariant loaded = engine_.call(QStringLiteral("LoadWorld"), {folder});
    engine_.call(QStringLiteral("flushout"));
    const QVariantList loadRecords =
        engine_.call(QStringLiteral("PollForMiscDifferences")).toList();
    if (failed(loaded)) {
        report.errors.append(sceneError(loaded.toString()));
        return report;
    }
    // Model and sound files that can't be read are told as output while loading.
    for (const QVariant& record : loadRecords) {
        const QVariantList items = record.toList();
        if (items.value(0).toString() == QLatin1String("output"))
            report.errors.append({world_files::Scene, 0, items.value(1).toString().trimmed()});
    }

    StandaloneScript script;
    const ScriptFileRead read = script.LoadScriptFiles(folder);
    if (!read.ok()) {
        report.errors.append({QDir(folder).relativeFilePath(read.problem.file), read.problem.line,
                              read.problem.message});
        return report;
    }
    const PythonScript python = script.python();
    for (const ScriptNotice& notice : python.notices) {
        const int line = notice.row > 0 ? read.content.rows.value(notice.row - 1).line : 0;
        report.errors.append({world_files::TreeScript, line, notice.message});
    }

    ErrorRecords records(report, python.handEditedLine);
    const auto poll = [&] {
        engine_.call(QStringLiteral("flushout"));
        records.take(engine_.call(QStringLiteral("PollForMiscDifferences")));
        engine_.call(QStringLiteral("PollForTreeDifferences"));
    };
    const ScriptRunResults ran = runPythonScript(engine_, python);
    for (const QVariant& result : {ran.generated, ran.handEdited}) {
        if (failed(result))
            report.errors.append({world_files::Python, 0, result.toString().trimmed()});
    }
    poll();
    const int steps = static_cast<int>(std::ceil(seconds_ / StepSeconds - 1e-9));
    for (int step = 0; step < steps; ++step) {
        // Nothing runs and nothing is due: the rest of the time would change nothing.
        if (engine_.call(QStringLiteral("GetLoopWait")).toInt() < 0)
            break;
        engine_.call(QStringLiteral("AdvanceClock"), {StepSeconds});
        const QVariant looped = engine_.call(QStringLiteral("Loop"));
        if (failed(looped))
            report.errors.append({world_files::Python, 0, looped.toString().trimmed()});
        poll();
    }
    return report;
}

} // namespace vessa
