#include "world/autosave.h"

#include "gateway/engine_link.h"
#include "world/open_world.h"

namespace vessa {

Autosave::Autosave(EngineLink& engine, OpenWorld& world, RecoveryStore& store,
                   std::function<void(const QString&)> tell)
    : engine_(engine), world_(world), store_(store), tell_(std::move(tell)) {
    QObject::connect(&interval_, &QTimer::timeout, [this] { copyNow(); });
    step_.setSingleShot(true);
    step_.setInterval(0);
    QObject::connect(&step_, &QTimer::timeout, [this] { nextStep(); });
}

void Autosave::start(std::chrono::milliseconds interval) {
    interval_.start(interval);
}

void Autosave::stop() {
    interval_.stop();
    step_.stop();
    stepping_ = false;
}

bool Autosave::busy() const {
    return stepping_ || store_.copying();
}

void Autosave::tellProblems() {
    const DiskProblem problem = store_.lastProblem();
    if (problem.isEmpty()) {
        told_ = false;
    } else if (!told_) {
        told_ = true;
        tell_(QStringLiteral("Vessa47 could not keep a copy of your unsaved work in %1 (%2): "
                             "save your world to be sure of it.")
                  .arg(problem.path, problem.reason));
    }
}

void Autosave::abandon(const QString& why) {
    stepping_ = false;
    copy_ = RecoveryCopy();
    if (!told_) {
        told_ = true;
        tell_(QStringLiteral("Vessa47 could not keep a copy of your unsaved work: %1").arg(why));
    }
}

void Autosave::copyNow() {
    if (busy() || !engine_.isSet())
        return;
    tellProblems();
    try {
        if (!world_.IsWorldDirty())
            return;
        generation_ = store_.generation();
        copy_ = RecoveryCopy();
        copy_.worldSaveFile = world_.status().worldSaveFile();
        copy_.savedAt = QDateTime::currentDateTime();
        // On a script tab the world may be running: it is copied as a save writes it.
        const QVariantList files = engine_
                                       .call(QStringLiteral("StartSceneCopy"),
                                             {world_.status().SceneScriptTab() != 0 ? 1 : 0})
                                       .toList();
        for (const QVariant& file : files) {
            const QVariantList pair = file.toList();
            if (pair.size() == 2)
                copy_.files.append({pair[0].toString(), pair[1].toString()});
        }
    } catch (const RunTimeError& e) {
        return abandon(e.description());
    }
    stepping_ = true;
    sceneDone_ = false;
    step_.start();
}

void Autosave::nextStep() {
    if (!stepping_)
        return;
    if (!sceneDone_) {
        try {
            const QString part =
                engine_.call(QStringLiteral("NextSceneCopyPart"), {kObjectsPerStep}).toString();
            copy_.scene += part.toUtf8();
            sceneDone_ = part.isEmpty();
        } catch (const RunTimeError& e) {
            return abandon(e.description());
        }
        step_.start();
        return;
    }
    copy_.script = MakeTVscript(world_.script().TreeView1(), world_.events().ListView1(),
                                world_.ArbitraryCodeBox().Text)
                       .text;
    stepping_ = false;
    store_.startCopy(std::move(copy_), generation_);
    copy_ = RecoveryCopy();
}

} // namespace vessa
