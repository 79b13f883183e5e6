#include "export/web_forms.h"

#include "controls/accessible_names.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStorageInfo>
#include <QTreeView>
#include <QVBoxLayout>

namespace vessa {

namespace {

QPushButton* button(const char* name, const QString& text, QWidget* parent) {
    auto* made = new QPushButton(text, parent);
    made->setObjectName(QString::fromLatin1(name));
    return made;
}

QDialogButtonBox* okCancel(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(dialog);
    buttons->addButton(button("OkButton", QStringLiteral("OK"), dialog),
                       QDialogButtonBox::AcceptRole);
    buttons->addButton(button("CancelButton", QStringLiteral("Cancel"), dialog),
                       QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

} // namespace

PreWebSaveForm::PreWebSaveForm(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("PreWebSaveForm"));
    setWindowTitle(QStringLiteral("Vessa - Save as WWW Page"));
    auto* layout = new QVBoxLayout(this);
    auto* label =
        new QLabel(QStringLiteral("Before creating a web page, you must first save your world."));
    label->setObjectName(QStringLiteral("Label1"));
    layout->addWidget(label);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* save = button("SaveButton", QStringLiteral("Save World"), this);
    save->setDefault(true);
    buttons->addButton(save, QDialogButtonBox::AcceptRole);
    buttons->addButton(button("CancelButton", QStringLiteral("Cancel"), this),
                       QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        DoSave = true;
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    applyAccessibleNames(this);
}

WebForm::WebForm(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("WebForm"));
    setWindowTitle(QStringLiteral("Web Page Preferences"));
    auto* layout = new QVBoxLayout(this);
    auto* size = new QGridLayout;
    WidthField = new QLineEdit(this);
    WidthField->setObjectName(QStringLiteral("WidthField"));
    HeightField = new QLineEdit(this);
    HeightField->setObjectName(QStringLiteral("HeightField"));
    auto* widthLabel = new QLabel(QStringLiteral("&Width:"), this);
    widthLabel->setBuddy(WidthField);
    auto* heightLabel = new QLabel(QStringLiteral("&Height:"), this);
    heightLabel->setBuddy(HeightField);
    size->addWidget(widthLabel, 0, 0);
    size->addWidget(WidthField, 0, 1);
    size->addWidget(heightLabel, 1, 0);
    size->addWidget(HeightField, 1, 1);
    layout->addLayout(size);
    AspectCheck = new QCheckBox(QStringLiteral("Maintain Aspect Ratio"), this);
    AspectCheck->setObjectName(QStringLiteral("AspectCheck"));
    NavigatorCheck = new QCheckBox(QStringLiteral("Show Camera Controls on web page"), this);
    NavigatorCheck->setObjectName(QStringLiteral("NavigatorCheck"));
    layout->addWidget(AspectCheck);
    layout->addWidget(NavigatorCheck);
    auto* place = new QGroupBox(QStringLiteral("Window Position in WWW Browser:"), this);
    auto* places = new QVBoxLayout(place);
    Option = new QButtonGroup(this);
    const char* names[] = {"Left Justified", "Center Justified", "Right Justified"};
    for (int i = 0; i < 3; ++i) {
        auto* option = new QRadioButton(QString::fromLatin1(names[i]), place);
        option->setObjectName(QStringLiteral("Option%1").arg(i));
        Option->addButton(option, i);
        places->addWidget(option);
    }
    layout->addWidget(place);
    layout->addWidget(okCancel(this));

    for (QLineEdit* field : {WidthField, HeightField})
        field->installEventFilter(this);
    connect(WidthField, &QLineEdit::textEdited, this, [this](const QString& text) {
        options_.setWidthText(text);
        showOptions(options_);
    });
    connect(HeightField, &QLineEdit::textEdited, this, [this](const QString& text) {
        options_.setHeightText(text);
        showOptions(options_);
    });
    connect(AspectCheck, &QCheckBox::toggled, this, [this](bool on) {
        if (!showing_)
            options_.setAspectChecked(on);
    });
    connect(NavigatorCheck, &QCheckBox::toggled, this,
            [this](bool on) { options_.setShowNavigator(on); });
    connect(Option, &QButtonGroup::idClicked, this, &WebForm::Option_Click);
    preset(false);
    applyAccessibleNames(this);
}

void WebForm::preset(bool centre) {
    options_.preset();
    if (centre)
        Option_Click(1);
    showOptions(options_);
}

void WebForm::Option_Click(int index) {
    options_.optionClicked(index);
    if (QAbstractButton* chosen = Option->button(index))
        chosen->setChecked(true);
}

void WebForm::showOptions(const WebPageOptions& options) {
    showing_ = true;
    if (WidthField->text() != options.widthText())
        WidthField->setText(options.widthText());
    if (HeightField->text() != options.heightText())
        HeightField->setText(options.heightText());
    AspectCheck->setChecked(options.aspectChecked());
    NavigatorCheck->setChecked(options.ShowNavigator);
    showing_ = false;
}

// A key that types something other than digits does not reach a size field.
bool WebForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!key->text().isEmpty() && key->text().at(0).isPrint() &&
            !WebPageOptions::acceptsKey(key->text()))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}

WebSaveForm::WebSaveForm(QString desktop, QWidget* parent)
    : QDialog(parent), desktop_(std::move(desktop)) {
    setObjectName(QStringLiteral("WebSaveForm"));
    setWindowTitle(QStringLiteral("Vessa - Save WWW Files"));
    auto* layout = new QVBoxLayout(this);
    auto* choose = new QLabel(QStringLiteral("Save WWW to..."), this);
    choose->setObjectName(QStringLiteral("ChooseLabel"));
    layout->addWidget(choose);
    DriveList = new QComboBox(this);
    DriveList->setObjectName(QStringLiteral("DriveList"));
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isValid() && volume.isReady())
            DriveList->addItem(volume.rootPath());
    }
    layout->addWidget(DriveList);
    folders_ = new QFileSystemModel(this);
    folders_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders_->setRootPath(QDir::rootPath());
    DirList = new QTreeView(this);
    DirList->setObjectName(QStringLiteral("DirList"));
    DirList->setModel(folders_);
    for (int column = 1; column < folders_->columnCount(); ++column)
        DirList->hideColumn(column);
    DirList->header()->hide();
    layout->addWidget(DirList);
    auto* nameRow = new QHBoxLayout;
    FileNameText = new QLineEdit(this);
    FileNameText->setObjectName(QStringLiteral("FileNameText"));
    auto* nameLabel = new QLabel(QStringLiteral("File name:"), this);
    nameLabel->setObjectName(QStringLiteral("NameLabel"));
    nameLabel->setBuddy(FileNameText);
    nameRow->addWidget(nameLabel);
    nameRow->addWidget(FileNameText);
    layout->addLayout(nameRow);
    auto* quick = new QHBoxLayout;
    QPushButton* desktopButton = button("DesktopButton", QStringLiteral("Desktop"), this);
    QPushButton* myDocs = button("MyDocs", QStringLiteral("My Documents"), this);
    quick->addWidget(desktopButton);
    quick->addWidget(myDocs);
    layout->addLayout(quick);
    layout->addWidget(okCancel(this));

    connect(DriveList, &QComboBox::textActivated, this, &WebSaveForm::setFolder);
    connect(folders_, &QFileSystemModel::directoryLoaded, this, &WebSaveForm::reveal);
    connect(DirList, &QTreeView::clicked, this,
            [this](const QModelIndex& index) { folder_ = folders_->filePath(index); });
    connect(desktopButton, &QPushButton::clicked, this, [this] { setFolder(desktop_); });
    // "My Documents" lies beside the desktop folder.
    connect(myDocs, &QPushButton::clicked, this,
            [this] { setFolder(QDir(desktop_).absoluteFilePath(QStringLiteral("../Documents"))); });
    setTabOrder(DriveList, DirList);
    setTabOrder(DirList, FileNameText);
    setTabOrder(FileNameText, desktopButton);
    setTabOrder(desktopButton, myDocs);
    applyAccessibleNames(this);
}

void WebSaveForm::setFolder(const QString& folder) {
    folder_ = QDir::cleanPath(folder);
    reveal();
    for (int i = 0; i < DriveList->count(); ++i) {
        if (folder_.startsWith(DriveList->itemText(i)))
            DriveList->setCurrentIndex(i);
    }
}

// The chosen folder, opened to in the list; again as the list reads its folders.
void WebSaveForm::reveal() {
    const QModelIndex at = folders_->index(folder_);
    if (!at.isValid())
        return;
    for (QModelIndex up = at.parent(); up.isValid(); up = up.parent())
        DirList->expand(up);
    DirList->setCurrentIndex(at);
    DirList->scrollTo(at);
}

void WebSaveForm::setFileName(const QString& name) {
    FileNameText->setText(name);
}

QString WebSaveForm::folder() const {
    return folder_;
}

QString WebSaveForm::fileName() const {
    return FileNameText->text();
}

void WebSaveForm::accept() {
    const QString problem = pageNameProblem(FileNameText->text());
    if (!problem.isEmpty()) {
        QMessageBox::information(this, windowTitle(), problem);
        return;
    }
    QDialog::accept();
}

} // namespace vessa
