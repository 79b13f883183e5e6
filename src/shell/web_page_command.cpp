#include "shell/web_page_command.h"

#include "base/run_time_error.h"
#include "export/web_export.h"
#include "export/web_forms.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/open_world.h"
#include "world/python_generator.h"
#include "world/script_file_format.h"
#include "world/world_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>

namespace vessa {

namespace {

const QString YesSave = QStringLiteral("yessave");
const QString NoSave = QStringLiteral("nosave");
constexpr int kProgressSteps = 1000;

} // namespace

WebPageCommand::WebPageCommand(QWidget* parent, AppState& state, EngineLink& engine,
                               ErrorReporter& reporter, OpenWorld& world,
                               std::function<bool()> save, std::function<bool()> saveAs)
    : parent_(parent), state_(state), engine_(engine), reporter_(reporter), world_(world),
      save_(std::move(save)), saveAs_(std::move(saveAs)) {
}

WebPageCommand::~WebPageCommand() = default;

void WebPageCommand::FileSaveAsWWWMenuButton_Click() {
    if (!webForm_)
        webForm_ = std::make_unique<WebForm>(parent_);
    if (!preWebSaveForm_)
        preWebSaveForm_ = std::make_unique<PreWebSaveForm>(parent_);
    preWebSaveForm_->DoSave = false;
    const bool named = !world_.status().worldSaveFile().isEmpty();
    if (!named) {
        preWebSaveForm_->exec();
        if (!preWebSaveForm_->DoSave || !saveAs_())
            return;
    } else if (!save_()) {
        return;
    }
    webForm_->preset(named);
    if (webForm_->exec() == QDialog::Accepted)
        WebForm_OkButton_Click();
}

void WebPageCommand::WebForm_OkButton_Click() {
    webForm_->hide();
    if (!webSaveForm_) {
        const QString desktop = engine_.call(QStringLiteral("ReadRegistryDesktopDir")).toString();
        webSaveForm_ = std::make_unique<WebSaveForm>(desktop, parent_);
    }
    const QString world = world_.status().worldSaveFile();
    webSaveForm_->setFolder(world);
    webSaveForm_->setFileName(QFileInfo(world).fileName() + QStringLiteral(".html"));
    if (webSaveForm_->exec() == QDialog::Accepted)
        WebSaveForm_OkButton_Click();
}

void WebPageCommand::WebSaveForm_OkButton_Click() {
    const QString folder = webSaveForm_->folder();
    if (!QFileInfo(folder).isDir())
        QDir().mkpath(folder);
    const QString page = QDir(folder).filePath(webSaveForm_->fileName());
    if (QFileInfo::exists(page) &&
        QMessageBox::question(webSaveForm_.get(), webSaveForm_->windowTitle(),
                              QStringLiteral("This world already exists.  Overwrite?"),
                              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                              QMessageBox::No) != QMessageBox::Yes) {
        result_ = NoSave;
        return;
    }
    if (writePage(page))
        result_ = YesSave;
    webSaveForm_->hide();
}

// The world as it was before the run, its Python written anew, then the page.
bool WebPageCommand::writePage(const QString& page) {
    const QString world = world_.status().worldSaveFile();
    try {
        asRunTimeError([&] {
            engine_.ExecuteCode(QStringLiteral("RestoreHandbasket()"), QStringLiteral("<Tool>"));
        });
    } catch (const RunTimeError& error) {
        reporter_.reportHandlerFailure(error);
        return false;
    }
    const PythonScript python = MakePythonScript(
        world_.script().TreeView1(), world_.events().ListView1(), world_.ArbitraryCodeBox().Text);
    QFile script(fileInFolder(world, world_files::Python));
    const QByteArray bytes = scriptFileBytes(python.text);
    if (!script.open(QIODevice::WriteOnly) || script.write(bytes) != bytes.size()) {
        QMessageBox::warning(parent_, QStringLiteral("Vessa47"),
                             QStringLiteral("%1 can't be written.").arg(script.fileName()));
        return false;
    }
    script.close();

    QProgressDialog progress(QStringLiteral("Writing the web page..."), QStringLiteral("Cancel"), 0,
                             kProgressSteps, parent_);
    progress.setObjectName(QStringLiteral("WebExportProgress"));
    progress.setWindowTitle(QStringLiteral("Vessa - Save WWW Files"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    const WebPageOptions& options = webForm_->options();
    WebPageRequest request;
    request.worldFolder = world;
    request.pageFile = page;
    request.width = options.widthText().toInt();
    request.height = options.heightText().toInt();
    request.position = options.SelectedOption;
    request.navigator = options.ShowNavigator;
    WebExportResult written;
    try {
        asRunTimeError([&] {
            written = WebExport(engine_, state_.HomeDir + QStringLiteral("WebPlayer"))
                          .run(request, [&](double fraction, const QString& step) {
                              progress.setLabelText(step + QStringLiteral("..."));
                              progress.setValue(static_cast<int>(fraction * kProgressSteps));
                              return !progress.wasCanceled();
                          });
        });
    } catch (const RunTimeError& error) {
        reporter_.reportHandlerFailure(error);
        return false;
    }
    progress.reset();
    if (written.outcome == WebExportResult::Failed)
        reporter_.CheckInterpreterResult(
            written.message,
            QStringLiteral("WebSaveForm:OkButton:Click - Error calling python saveforplugin."));
    return written.outcome == WebExportResult::Written;
}

} // namespace vessa
