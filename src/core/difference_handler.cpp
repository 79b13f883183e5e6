#include "core/difference_handler.h"

namespace vessa {

namespace {

QVariantList asList(const QVariant& value) {
    if (value.typeId() != QMetaType::QVariantList)
        throw RunTimeError(RunTimeError::TypeMismatch,
                           QStringLiteral("Type mismatch: expected a list of records, got %1")
                               .arg(QString::fromLatin1(value.typeName())));
    return value.toList();
}

} // namespace

QVariant recordItem(const QVariantList& record, int index) {
    if (index < 0 || index >= record.size())
        throw RunTimeError(
            RunTimeError::SubscriptOutOfRange,
            QStringLiteral("Subscript out of range: a record has no item %1").arg(index));
    return record[index];
}

void DifferenceHandler::HandleDifferences(const QVariant& differences) {
    gUpdateObjectTree2 = false;
    try {
        asRunTimeError([&] {
            for (const QVariant& entry : asList(differences)) {
                const QVariantList record = asList(entry);
                handleRecord(recordItem(record, 0).toString().toLower(), record);
            }
        });
    } catch (const RunTimeError& e) {
        raiseWithReport(state_, ReportForm::C, QStringLiteral("VB: HandleDifferences -Error"), e);
    }
}

void DifferenceHandler::handleRecord(const QString& tag, const QVariantList& record) {
    if (tag == QStringLiteral("undoemptychange")) {
        UndoAvailable = !recordItem(record, 2).toBool();
        view_.showUndoAvailable(UndoAvailable);
    } else if (tag == QStringLiteral("output")) {
        view_.appendOutput(recordItem(record, 1).toString(), QColor(0, 0, 0));
    } else if (tag == QStringLiteral("error")) {
        view_.appendOutput(recordItem(record, 1).toString(), QColor(255, 0, 0));
    } else if (tag == QStringLiteral("popuperrordialog")) {
        popUpErrorDialog(record);
    } else if (tag == QStringLiteral("activechanged")) {
        WorldActive = recordItem(record, 2).toBool();
        view_.showWorldActive(WorldActive);
    } else if (tag == QStringLiteral("hidenavigator")) {
        // Accepted so that it does not count as unknown.
    } else {
        view_.PrintOutput(QStringLiteral("MainForm:HandleDifferences got an unknown tag: ") +
                          recordItem(record, 0).toString());
    }
}

void DifferenceHandler::popUpErrorDialog(const QVariantList& record) {
    const ErrorFormContent content =
        userErrorContent(recordItem(record, 1), recordItem(record, 2), state_.ErrorLineOffset);
    const bool onTop = view_.cameraWindowOnTop();
    if (onTop)
        view_.setRenderFormAlwaysOnTop(false);
    view_.pumpEvents();
    reporter_.CheckInterpreterResult(
        engine_.ExecuteCode(QStringLiteral("PlaySystemSound ('Error')"), QStringLiteral("<Tool>")),
        QStringLiteral("MainForm:HandleDifferences: Error playing system error sound."));
    view_.showUserError(content);
    if (onTop)
        view_.setRenderFormAlwaysOnTop(true);
}

} // namespace vessa
