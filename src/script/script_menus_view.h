#pragma once

#include "script/script_menus.h"

#include <QMenu>
#include <QObject>
#include <QPointer>

#include <functional>

class QInputDialog;

namespace vessa {

class ObjectPickerPopup;
class ScriptModel;
class TextInputBoxForm;

// The windows of the script's menus and editors: the action cascade, an object's menu,
// the value menus and the sound list as pop-up menus, the text box, the object picker,
// and the question for an object's new name. It answers those requests of the script
// for as long as it exists; what a choice leaves that is not its own (a message) goes to
// showOther.
class ScriptMenusView : public QObject {
    Q_OBJECT
public:
    // anchor: the script's tree, over which the editors open. parent owns the windows.
    ScriptMenusView(ScriptModel& model, QWidget& anchor,
                    std::function<void(const ScriptRequest&)> showOther, QWidget* parent);
    ~ScriptMenusView() override;

    ScriptMenus& menus() { return menus_; }
    // The pop-up menu open, if any.
    QMenu* openMenu() const { return menu_; }
    TextInputBoxForm& textInputBox() const { return *textBox_; }
    ObjectPickerPopup& objectPicker() const { return *picker_; }

    // Shows what request asks for, at its screen point, or where the mouse is.
    void show(ScriptRequest request);

private:
    void popUp(const ScriptRequest& request);
    void askForObjectName(const ScriptRequest& request);
    void guarded(const std::function<void()>& work);

    ScriptModel& model_; // Not owned.
    QWidget& anchor_;    // Not owned.
    std::function<void(const ScriptRequest&)> showOther_;
    ScriptMenus menus_;
    TextInputBoxForm* textBox_; // Owned by Qt.
    ObjectPickerPopup* picker_; // Owned by Qt.
    QInputDialog* objectName_;  // Owned by Qt.
    QPointer<QMenu> menu_;
    QPoint lastPoint_; // where the last menu opened, for what follows from it
};

} // namespace vessa
