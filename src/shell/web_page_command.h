#pragma once

#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;
class OpenWorld;
class PreWebSaveForm;
class WebForm;
class WebSaveForm;

// "Save As WWW Page...": makes sure the world is saved, asks the page's size,
// place and controls (WebForm) and where it goes (WebSaveForm), regenerates
// the world's Python and writes the page, its archive and the player, with
// progress that can be cancelled. The forms are made once and kept.
class WebPageCommand {
public:
    // save and saveAs answer whether the world was saved.
    WebPageCommand(QWidget* parent, AppState& state, EngineLink& engine, ErrorReporter& reporter,
                   OpenWorld& world, std::function<bool()> save, std::function<bool()> saveAs);
    ~WebPageCommand();

    void FileSaveAsWWWMenuButton_Click();
    // "yessave" once a page was written, "nosave" when the user held back.
    const QString& result() const { return result_; }

private:
    void WebForm_OkButton_Click();
    void WebSaveForm_OkButton_Click();
    bool writePage(const QString& page);

    QWidget* parent_;
    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    OpenWorld& world_;
    std::function<bool()> save_;
    std::function<bool()> saveAs_;
    std::unique_ptr<PreWebSaveForm> preWebSaveForm_;
    std::unique_ptr<WebForm> webForm_;
    std::unique_ptr<WebSaveForm> webSaveForm_;
    QString result_;
};

} // namespace vessa
