#pragma once

#include <QDialog>

class QLabel;
class QListWidget;

namespace vessa {

// Who made the program, its version, the free software it stands on, and its copyright.
class AboutForm : public QDialog {
    Q_OBJECT
public:
    // version: the engine's version text.
    explicit AboutForm(const QString& version, QWidget* parent = nullptr);
    QListWidget& NameList() const { return *NameList_; }
    QLabel& VersionLabel() const { return *VersionLabel_; }

private:
    QListWidget* NameList_;
    QLabel* VersionLabel_;
};

} // namespace vessa
