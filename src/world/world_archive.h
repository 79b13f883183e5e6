#pragma once

#include "export/friend_mail.h"
#include "export/ves_archive.h"

#include <QString>

#include <functional>
#include <optional>

namespace vessa {

class WorldFiles;

// What importing and sending a world ask of the windows.
class ArchiveView {
public:
    virtual ~ArchiveView() = default;
    // The archive the user picks to import, beginning in startIn; "" when none was chosen.
    virtual QString chooseArchive(const QString& startIn) = 0;
    // Runs work while a progress window with a Cancel button shows what it tells.
    virtual ArchiveOutcome
    runWithProgress(const QString& label,
                    const std::function<ArchiveOutcome(const ArchiveProgress&)>& work) = 0;
    // The form of a mail to friends, preset with mail; empty when the user cancels.
    virtual std::optional<FriendMail> askFriendMail(const FriendMail& mail) = 0;
    // The trust the user once gave the code of a world in folder is taken back.
    virtual void forgetTrust(const QString& folder) = 0;
    // Starts program with arguments in folder and does not wait; false if it did not start.
    virtual bool startTool(const QString& program, const QStringList& arguments,
                           const QString& folder) = 0;
};

// The title of every box about importing an archive.
inline const QString kImportTitle = QStringLiteral("Import VES File");

// "Import VES File..." and "Send To A Friend...": a world into an archive and out of one,
// over the File commands of the world.
class WorldArchive {
public:
    WorldArchive(WorldFiles& files, ArchiveView& view) : files_(files), view_(view) {}

    void mnuImportVES_Click();
    void mnuSendToFriend_Click();

    // Where an import unpacks: TEMP's (or TMP's, or the system's) TempWorld, with a "_"
    // more for each such folder that already holds something.
    static QString scratchFolder();

private:
    // The world's archive packed into its folder; "" if it was not.
    QString packOpenWorld();

    WorldFiles& files_;
    ArchiveView& view_;
};

} // namespace vessa
