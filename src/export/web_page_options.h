#pragma once

#include <QString>

namespace vessa {

// What WebForm asks, on its text fields: the view's width and height in
// pixels, whether their ratio is held, the page's alignment and whether the
// page shows the camera controls. The form shows these and forwards what the
// user does to them.
class WebPageOptions {
public:
    // The form as it comes up: 320 x 240, ratio 4 to 3 held.
    void preset();

    // Changing one field while the ratio is held changes the other.
    void setWidthText(const QString& text);
    void setHeightText(const QString& text);
    // Checking the box holds the shape the fields have now.
    void setAspectChecked(bool checked);
    // 0 "Left", 1 "Center", 2 "Right".
    void optionClicked(int index);
    void setShowNavigator(bool show) { ShowNavigator = show; }

    const QString& widthText() const { return width_; }
    const QString& heightText() const { return height_; }
    bool aspectChecked() const { return aspect_; }

    // Whether a key's text may go into a size field: digits only.
    static bool acceptsKey(const QString& text);

    float AspectRatio = 4.0f / 3.0f; // width to height
    QString SelectedOption = QStringLiteral("Center");
    bool ShowNavigator = false;

private:
    QString width_;
    QString height_;
    bool aspect_ = false;
};

// Why a page name can't be used ("Please specify a name.", the ending), or "".
QString pageNameProblem(const QString& name);

} // namespace vessa
