#pragma once

#include "export/web_page_options.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFileSystemModel;
class QLabel;
class QLineEdit;
class QTreeView;

namespace vessa {

// "Vessa - Save as WWW Page": a world must be saved before it becomes a page.
// DoSave tells whether the user chose to save it.
class PreWebSaveForm : public QDialog {
    Q_OBJECT
public:
    explicit PreWebSaveForm(QWidget* parent = nullptr);
    bool DoSave = false;
};

// "Web Page Preferences": the view's size, its place in the browser's window
// and the camera controls, kept in a WebPageOptions.
class WebForm : public QDialog {
    Q_OBJECT
public:
    explicit WebForm(QWidget* parent = nullptr);

    // The preset values shown again: 320 x 240, ratio held; centred when asked.
    void preset(bool centre);
    void Option_Click(int index);
    const WebPageOptions& options() const { return options_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showOptions(const WebPageOptions& options);

    WebPageOptions options_;
    QLineEdit* WidthField;
    QLineEdit* HeightField;
    QCheckBox* AspectCheck;
    QCheckBox* NavigatorCheck;
    QButtonGroup* Option;
    bool showing_ = false;
};

// "Vessa - Save WWW Files": where the page goes. The folder is chosen among
// the drives (mounted volumes) and their folders; the name must be a page's.
class WebSaveForm : public QDialog {
    Q_OBJECT
public:
    // desktop: the user's desktop folder, which the two quick buttons go to.
    WebSaveForm(QString desktop, QWidget* parent = nullptr);

    void setFolder(const QString& folder);
    void setFileName(const QString& name);
    QString folder() const;
    QString fileName() const;

    void accept() override;

private:
    void reveal();

    QString desktop_;
    QComboBox* DriveList;
    QTreeView* DirList;
    QFileSystemModel* folders_;
    QLineEdit* FileNameText;
    QString folder_;
};

} // namespace vessa
