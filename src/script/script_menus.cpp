#include "script/script_menus.h"

namespace vessa {

std::vector<MenuRow> ScriptMenus::menuRows(const ScriptRequest& request) {
    using Kind = ScriptRequest::Kind;
    switch (request.What) {
    case Kind::ActionMenu:
        return actions_.mnuActionsMain();
    case Kind::ObjectMenu:
        return actions_.ObjectMenuButton(request.Value);
    case Kind::StarMenuAll:
        return star_.mnuStarAll(request.Number);
    case Kind::StarMenuRow:
        return star_.mnuStarRow(request.Number);
    case Kind::SoundList:
        return star_.mnuSoundList();
    default:
        return {};
    }
}

} // namespace vessa
