#pragma once

#include "world/world_archive.h"

class QWidget;

namespace vessa {

class WorldTrust;

// The windows of importing and sending a world: the file dialog, the progress window,
// the mail form; and starting the mail client.
class ArchiveDialogs : public ArchiveView {
public:
    ArchiveDialogs(QWidget* parent, WorldTrust& trust) : parent_(parent), trust_(trust) {}

    QString chooseArchive(const QString& startIn) override;
    ArchiveOutcome
    runWithProgress(const QString& label,
                    const std::function<ArchiveOutcome(const ArchiveProgress&)>& work) override;
    std::optional<FriendMail> askFriendMail(const FriendMail& mail) override;
    void forgetTrust(const QString& folder) override;
    bool startTool(const QString& program, const QStringList& arguments,
                   const QString& folder) override;

private:
    QWidget* parent_;   // Not owned.
    WorldTrust& trust_; // Not owned.
};

} // namespace vessa
